// SPDX-License-Identifier: MIT
// Workers that die, hang, grow, or reach out: each costs its step and no more.
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

const QString misbehaving = QStringLiteral(" --library " MISBEHAVING_PLUGIN);

} // namespace

class test_lost_workers : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void a_lost_worker_costs_its_step_data() {
        QTest::addColumn<QString>("profile");
        QTest::addColumn<QString>("options");
        QTest::addColumn<QString>("lost");
        QTest::addColumn<QString>("reason");
        const QString none;
        QTest::newRow("dies") << "dies_before_latest_audio_search" << none << "latest_audio_search"
                              << "killed by SIGSEGV (Segmentation fault)";
        QTest::newRow("dies before the first") << "dies_before_time_reminders" << none << "time_reminders"
                                               << "killed by SIGSEGV (Segmentation fault)";
        QTest::newRow("dies before the last") << "dies_before_searches" << none << "searches"
                                              << "killed by SIGSEGV (Segmentation fault)";
        QTest::newRow("ends early") << "exits_before_cookies" << none << "cookies"
                                    << "it ended early with exit code 0";
        QTest::newRow("hangs") << "hangs_before_cookies"
                               << "--step-timeout 1"
                               << "cookies"
                               << "it made no progress for 1 s";
        QTest::newRow("takes too long") << "hangs_before_cookies"
                                        << "--step-limit 1"
                                        << "cookies"
                                        << "the step took longer than 1 s";
        QTest::newRow("eats memory") << "eats_before_cookies"
                                     << "--memory-limit 300M"
                                     << "cookies"
                                     << "it held more than 300 MiB of memory";
        QTest::newRow("fills the disk") << "fills_before_cookies"
                                        << "--output-limit 20M"
                                        << "cookies"
                                        << "its database grew beyond 20 MiB";
    }
    void a_lost_worker_costs_its_step() {
        QFETCH(QString, profile);
        QFETCH(QString, options);
        QFETCH(QString, lost);
        QFETCH(QString, reason);
        const host_case host;
        const QByteArray bad = profile.toUtf8();
        host.add_recording("anna", "1.wav");
        host.add_recording(bad, "2.wav");
        host.add_recording("zoe", "3.wav");
        const host_answer answer = host.extract(options + misbehaving + " --clear"_q);
        QVERIFY2(answer.code == 3, answer.error.constData());
        const QJsonObject summary = answer.json();
        const QJsonArray losses = summary["losses"_q].toArray();
        QCOMPARE(losses.size(), 1);
        QCOMPARE(losses[0]["profile"_q].toString(), profile);
        QCOMPARE(losses[0]["table"_q].toString(), lost);
        QCOMPARE(losses[0]["reason"_q].toString(), reason);
        QVERIFY2(answer.error.contains("not finished: profile " + bad + ", " + lost.toUtf8()),
                 answer.error.constData());
        const QVariantMap one_recording{{"latest_audio_search"_q, 1}};
        QCOMPARE(rows_of(summary, "anna"_q), one_recording);
        QCOMPARE(rows_of(summary, "zoe"_q), one_recording);
        QCOMPARE(rows_of(summary, profile), lost == "latest_audio_search"_q ? QVariantMap() : one_recording);
        // Every step but the lost one came to its end, in the profiles' order, and no work is left behind.
        const QByteArray log = whole_file(QString::fromUtf8(host.log()));
        QCOMPARE(log.count("----- ENDS ------") + log.count("-----ENDS------"),
                 3 * 11 - (lost == "searches"_q ? 3 : 1));
        QVERIFY(!QFile::exists(QString::fromUtf8(host.result() + "/Artifacts_Result/Cortana/.workers")));
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

    // Profiles that end out of order give the rows, keys and log of one process after the other.
    void content_is_that_of_one_worker_at_a_time_data() {
        QTest::addColumn<QString>("option");
        QTest::newRow("added to earlier rows") << "";
        QTest::newRow("cleared") << "--clear";
    }
    void content_is_that_of_one_worker_at_a_time() {
        QFETCH(QString, option);
        QStringList rows[2];
        for (const int jobs : {1, 4}) {
            const host_case host;
            host.add_recording("earlier", "0.wav");
            QCOMPARE(host.extract().code, 0);
            for (int profile = 0; profile < 6; ++profile) { // the first ones have most to write
                for (int recording = 0; recording < 600 - 100 * profile; ++recording) {
                    host.add_recording("p" + QByteArray::number(profile), QByteArray::number(recording) + ".wav");
                }
            }
            QCOMPARE(host.extract("--jobs %1 "_q.arg(jobs) + option).code, 0);
            rows[jobs == 1 ? 0 : 1] = host.recordings({"INT"_q, "system_user"_q, "file_name"_q});
        }
        QCOMPARE(rows[0].size(), 2101 + (option.isEmpty() ? 1 : 0));
        QCOMPARE(rows[1], rows[0]);
    }

    void a_second_run_into_the_same_result_is_refused() {
        const host_case host;
        host.add_recording("waits_for_cancel", "1.wav");
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
        QCOMPARE(host.recordings({"file_name"_q}), QStringList());
        QCOMPARE(host.extract().code, 0);
    }
};

QTEST_GUILESS_MAIN(test_lost_workers)
#include "test_lost_workers.moc"
