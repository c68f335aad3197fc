// SPDX-License-Identifier: MIT
// Workers that die, hang, grow, or reach out: each costs its step and no more.
#include "host/run/worker_limits.h"
#include "host_case.h"

#include <QJsonArray>
#include <QtTest>

#include <csignal>
#include <unistd.h>

namespace {

// {"table": rows} of one profile.
QVariantMap rows_of(const QJsonObject& summary, const QString& profile) {
    QVariantMap rows;
    for (const QJsonValue& row : summary["rows"_q].toArray()) {
        if (row["system_user"_q].toString() == profile && row["rows"_q].toInt() > 0) {
            rows.insert(row["table"_q].toString(), row["rows"_q].toInt());
        }
    }
    return rows;
}

// The texts under the key, in the list's order; of a list of texts without one.
QStringList texts_of(const QJsonValue& list, const QString& key = {}) {
    QStringList texts;
    for (const QJsonValue& one : list.toArray()) {
        texts << (key.isEmpty() ? one : one[key]).toString();
    }
    return texts;
}

using lost_steps = QMap<QString, QString>; // {profile: why}

const QString misbehaving = QStringLiteral(" --library " MISBEHAVING_PLUGIN);

} // namespace

Q_DECLARE_METATYPE(lost_steps)

class test_lost_workers : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void a_lost_worker_costs_its_step_data() {
        QTest::addColumn<QString>("options");
        QTest::addColumn<lost_steps>("lost");
        QTest::newRow("dies, grows, fills the disk")
            << "--memory-limit 300M --output-limit 20M"
            << lost_steps{{"dies_before_latest_audio_search"_q, "killed by SIGSEGV (Segmentation fault)"_q},
                          {"dies_before_time_reminders"_q, "killed by SIGSEGV (Segmentation fault)"_q}, // the first
                          {"dies_before_searches"_q, "killed by SIGSEGV (Segmentation fault)"_q},       // the last
                          {"exits_before_cookies"_q, "it ended early with exit code 0"_q},
                          {"eats_before_cookies"_q, "it held more than 300 MiB of memory"_q},
                          {"fills_before_cookies"_q, "its database grew beyond 20 MiB"_q}};
        QTest::newRow("hangs") << "--step-timeout 2"
                               << lost_steps{{"hangs_before_cookies"_q, "it made no progress for 2 s"_q}};
        QTest::newRow("takes too long") << "--step-limit 2"
                                        << lost_steps{{"hangs_before_cookies"_q, "the step took longer than 2 s"_q}};
    }
    void a_lost_worker_costs_its_step() {
        QFETCH(QString, options);
        QFETCH(lost_steps, lost);
        const host_case host;
        host.add_recording("anna", "1.wav");
        host.add_recording("zoe", "3.wav");
        for (const QString& profile : lost.keys()) {
            host.add_recording(profile.toUtf8(), "2.wav");
        }
        const host_answer answer = host.extract(options + misbehaving + " --clear"_q);
        QVERIFY2(answer.code == 3, answer.error.constData());
        const QJsonObject summary = answer.json();
        const QVariantMap one_recording{{"latest_audio_search"_q, 1}};
        QCOMPARE(rows_of(summary, "anna"_q), one_recording);
        QCOMPARE(rows_of(summary, "zoe"_q), one_recording);
        int ends = 11 * (2 + lost.size());
        lost_steps told;
        for (const QJsonValue& loss : summary["losses"_q].toArray()) {
            const QString profile = loss["profile"_q].toString();
            const QString table = loss["table"_q].toString();
            QVERIFY2(profile.endsWith("_before_"_q + table), qPrintable(profile + table));
            told.insert(profile, loss["reason"_q].toString());
            QVERIFY(!loss["file"_q].toString().startsWith(QString::fromUtf8(host.base()))); // no evidence was open
            const QByteArray line = "not finished: profile " + profile.toUtf8() + ", " + table.toUtf8();
            QVERIFY2(answer.error.contains(line), answer.error.constData());
            QCOMPARE(rows_of(summary, profile), table == "latest_audio_search"_q ? QVariantMap() : one_recording);
            ends -= table == "searches"_q ? 3 : 1;
        }
        QCOMPARE(told, lost);
        QCOMPARE(summary["losses"_q].toArray().size(), lost.size());
        // What the workers of one profile tell alike is told once.
        const QByteArray record = whole_file(QString::fromUtf8(host.result() + "/Artifacts_Result/Cortana/run.json"));
        for (QStringList list : {texts_of(QJsonDocument::fromJson(record)["evidence"_q], "path"_q),
                                 texts_of(summary["sources_found"_q])}) {
            QVERIFY(list.size() >= 2 + lost.size());
            QCOMPARE(list.removeDuplicates(), 0);
        }
        // Every step but the lost ones came to its end, in the profiles' order, and no work is left behind.
        const QByteArray log = whole_file(QString::fromUtf8(host.log()));
        QCOMPARE(log.count("half a line\n"), lost.keys().filter("dies_"_q).size());
        QCOMPARE(log.count("----- ENDS ------") + log.count("-----ENDS------"), ends);
        QVERIFY(!QFile::exists(QString::fromUtf8(host.result() + "/Artifacts_Result/Cortana/.workers")));
    }

    // However often it is looked at too late for the old step: the new one is at its beginning.
    void each_step_has_its_own_time() {
        worker_limits limits;
        limits.step_seconds = 0;
        worker_watch watch(::getpid(), {}, limits);
        while (watch.passed_limit().isEmpty()) {
        }
        bool is_anew = false;
        for (int look = 0; look < 1000 && !is_anew; ++look) {
            watch.step_began();
            is_anew = watch.passed_limit().isEmpty();
        }
        QVERIFY(is_anew);
    }

    void what_only_counts_or_log_tell_is_told_data() {
        QTest::addColumn<int>("code");
        QTest::addColumn<QByteArray>("words");
        QTest::newRow("boasts") << 5 << QByteArray("rows were lost: the plugin wrote 2, the database");
        QTest::newRow("loses_its_log") << 5 << QByteArray("cortana_debug.log is not whole");
        QTest::newRow("complains_before_cookies") << 3 << QByteArray("it FAILED");
    }
    void what_only_counts_or_log_tell_is_told() {
        QFETCH(QByteArray, words);
        const host_case host;
        host.add_recording(QTest::currentDataTag(), "1.wav");
        const host_answer answer = host.extract(misbehaving);
        QVERIFY2(answer.error.contains(words), answer.error.constData());
        QTEST(answer.code, "code");
    }

    void a_worker_is_confined() {
        const host_case host;
        host.add_recording("reaches_out_before_cookies", "1.wav");
        host.write(host.base() + "/secret", "x");
        QByteArray secret = "SECRET_FILE=" + host.base() + "/secret";
        const auto with_secret = [&secret] { ::putenv(secret.data()); };
        const host_answer confined = host.extract(misbehaving, with_secret);
        QVERIFY2(confined.code == 0, confined.error.constData());
        QVERIFY(!QFile::exists(QString::fromUtf8(host.source() + "/planted")));
        const host_answer open = host.extract(misbehaving + " --no-sandbox"_q, with_secret);
        QCOMPARE(open.code, 3); // what is tried is possible without
        QVERIFY2(open.error.contains("LEAK: wrote into the source"), open.error.constData());
    }

    // Profiles that end out of order (the first one is begun twice) give the rows and keys of one process after the
    // other.
    void content_is_that_of_one_worker_at_a_time() {
        QStringList rows[2];
        for (const int jobs : {1, 4}) {
            const host_case host;
            host.add_recording("earlier", "0.wav");
            QCOMPARE(host.extract().code, 0);
            for (const QByteArray profile : {"dies_before_searches", "p1", "p2"}) {
                for (int recording = 0; recording < 20; ++recording) {
                    host.add_recording(profile, QByteArray::number(recording) + ".wav");
                }
            }
            for (const char* const option : {"", "--clear"}) {
                QCOMPARE(host.extract("--jobs %1 "_q.arg(jobs) + QLatin1String(option) + misbehaving).code, 3);
                rows[jobs == 1 ? 0 : 1] << host.recordings({"INT"_q, "system_user"_q, "file_name"_q});
            }
        }
        QCOMPARE(rows[0].size(), 62 + 61);
        QCOMPARE(rows[1], rows[0]);
    }

    void a_second_run_into_the_same_result_is_refused_data() {
        QTest::addColumn<int>("rows_kept"); // of the cancelled first one
        QTest::newRow("waits_for_cancel") << 0;
        QTest::newRow("waits_in_a_step") << 1;
    }
    void a_second_run_into_the_same_result_is_refused() {
        const host_case host;
        host.add_recording(QTest::currentDataTag(), "1.wav");
        host_process first;
        first.in_child = [] {};
        first.start(QStringLiteral(HOST_PROGRAM), host.filled("extract {S} {R}"_q + misbehaving));
        first.setReadChannel(QProcess::StandardError);
        while (!first.readLine().startsWith("waiting")) {
            QVERIFY(first.canReadLine() || first.waitForReadyRead(60000));
        }
        const host_answer second = host.extract();
        QCOMPARE(second.code, 5);
        QVERIFY2(second.error.contains("another run writes into it"), second.error.constData());
        ::kill(static_cast<pid_t>(first.processId()), SIGTERM); // reaches the worker as a cancel
        QVERIFY(first.waitForFinished(60000));
        QCOMPARE(first.exitCode(), 143);
        QTEST(host.recordings({"file_name"_q}).size(), "rows_kept");
        QCOMPARE(host.extract().code, 0);
    }
};

QTEST_GUILESS_MAIN(test_lost_workers)
#include "test_lost_workers.moc"
