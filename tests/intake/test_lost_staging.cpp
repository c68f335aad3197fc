// SPDX-License-Identifier: MIT
// The process that copies dies at a known message: what it had copied whole is extracted, all else is told, and half a
// copy is never read.
#include "samples/sample_source.h"
#include "tests/intake/wrapped_staging.h"

#include <QJsonArray>
#include <QtTest>

class test_lost_staging : public QObject {
    Q_OBJECT

    wrapped_staging program;
    QTemporaryDir evidence;
    QString source = evidence.path() + "/source.tar"_q;

    host_answer extract(const host_case& result) const { return program.extract(result, source); }
    // Below the staging folder, without folders.
    static QStringList files_in(const QString& folder) {
        QStringList files;
        QDirIterator entries(folder, QDir::Files | QDir::Hidden, QDirIterator::Subdirectories);
        while (entries.hasNext()) {
            files << entries.next().mid(folder.size());
        }
        files.sort();
        return files;
    }
    static QStringList paths_in(const QJsonArray& findings, const QString& reason) {
        QStringList paths;
        for (const QJsonValue& one : findings) {
            paths << (one["reason"_q].toString().startsWith(reason) ? QStringList(one["path"_q].toString())
                                                                    : QStringList());
        }
        paths.sort();
        return paths;
    }

private Q_SLOTS:
    void initTestCase() {
        QVERIFY(write_sample_source(evidence.path() + "/source"_q));
        wrapped_staging::run_in(evidence.path(), "tar --sort=name -C source -cf source.tar Users"_q);
    }

    void dies_at_a_copy() {
        program.die_after("/event.:.staged.*anna.*CortanaCoreDb.dat/q");
        const host_case result;
        const host_answer answer = extract(result);
        QVERIFY2(answer.code == 3, answer.error.constData());
        QVERIFY2(answer.error.contains("rows come from what was: killed by SIGKILL"), answer.error.constData());
        const QString record_file = QString::fromUtf8(result.result()) + "/Artifacts_Result/Cortana/run.json"_q;
        const QJsonObject record = QJsonDocument::fromJson(whole_file(record_file)).object();
        const QString staged = record["staged_copies"_q].toString();
        QStringList copied;
        for (const QJsonValue& one : record["evidence"_q].toArray()) {
            copied << one["path"_q].toString().mid(source.size() + 1);
        }
        copied.sort();
        QVERIFY(copied.size() > 5);
        QCOMPARE(files_in(staged), copied); // one more was copied whole and not told of
        const QStringList missing = paths_in(record["problems"_q].toArray(), "not copied"_q);
        QVERIFY(missing.contains(source + "/Users/anna/NTUSER.DAT"_q));
        QVERIFY(missing.contains(source + "/Users/bernd/NTUSER.DAT"_q));
        QVERIFY(dump_table(QString::fromUtf8(result.database()), "time_reminders"_q).size() > 1);
        QCOMPARE(dump_table(QString::fromUtf8(result.database()), "searches"_q), QStringList());
    }

    void dies_before_it_copied() {
        program.die_after("/event.:.planned/q");
        const host_case result;
        const host_answer answer = extract(result);
        QCOMPARE(answer.code, 3);
        QVERIFY2(answer.error.contains("its parts could not be staged: killed by SIGKILL"), answer.error.constData());
        QVERIFY(!QFile::exists(QString::fromUtf8(result.result())));
    }

    // What the machine lacks is no finding about the evidence: another run may have it.
    void workers_cannot_be_started_data() {
        QTest::addColumn<QByteArray>("script");
        QTest::addColumn<QByteArray>("wanted");
        QTest::newRow("the one that copies")
            << QByteArray() << QByteArray("its parts could not be staged: the worker could not be started");
        QTest::newRow("those of the profiles")
            << QByteArray("rm \"${0%-stage}\"; exec \"$real\" \"$@\"") << QByteArray("not finished: profile anna");
    }
    void workers_cannot_be_started() {
        QFETCH(QByteArray, script);
        QFETCH(QByteArray, wanted);
        const wrapped_staging lacking; // until it wraps one, a program that copies
        if (!script.isEmpty()) {
            lacking.wrap(script);
        }
        const host_case result;
        const host_answer answer = lacking.extract(result, source);
        QVERIFY2(answer.error.contains(wanted), answer.error.constData());
        QCOMPARE(answer.code, 1);
    }

    void dies_before_names_are_looked_for() {
        program.die_after("/event.:.waiting/q");
        const host_case result;
        const host_case undisturbed;
        const host_answer answer = extract(result);
        QVERIFY2(answer.code == 3, answer.error.constData());
        QCOMPARE(paths_in(answer.json()["problems"_q].toArray(), "which files exist that web cache entries name"_q),
                 QStringList(source));
        QCOMPARE(answer.json()["rows_added"_q],
                 undisturbed.run("extract --json "_q + source + " {R}"_q).json()["rows_added"_q]);
    }
};

QTEST_GUILESS_MAIN(test_lost_staging)
#include "test_lost_staging.moc"
