// SPDX-License-Identifier: MIT
// The process that copies dies at a known message: what it had copied whole is extracted, all else is told, and half a
// copy is never read.
#include "samples/sample_source.h"
#include "tests/host/host_case.h"

#include <QJsonArray>
#include <QtTest>

class test_lost_staging : public QObject {
    Q_OBJECT

    QTemporaryDir programs; // a copy of the host beside a staging program that dies
    QTemporaryDir evidence;
    QString source = evidence.path() + "/source.tar"_q;

    static void shell(const QString& script) { QCOMPARE(QProcess::execute("sh"_q, {"-ec"_q, script}), 0); }
    // Of the real program's messages those to the first one that matches come through; then it is killed.
    void die_after(const QString& message) const {
        QFile script(programs.path() + "/cortana-stage"_q);
        QVERIFY(script.open(QIODevice::WriteOnly));
        script.write("#!/bin/sh\n" HOST_PROGRAM "-stage \"$1\" $$ | sed '/" + message.toUtf8() + "/q'\nkill -9 $$\n");
        script.close();
        script.setPermissions(QFile::ReadOwner | QFile::ExeOwner | QFile::WriteOwner);
    }
    host_answer extract(const host_case& result) const {
        host_process process;
        process.in_child = [] {};
        process.start(
            programs.path() + "/cortana"_q,
            result.filled("extract --json --library "_q + QStringLiteral(PLUGIN_LIBRARY) + " "_q + source + " {R}"_q));
        process.waitForFinished(60000);
        return {process.exitCode(), process.readAllStandardOutput(), process.readAllStandardError()};
    }
    // All messages come through, then the host's program is gone: it cannot start workers for the profiles.
    void end_without_host() const {
        shell("rm -f "_q + programs.path() + "/cortana-stage && cd "_q + programs.path() +
              " && printf '#!/bin/sh\n" HOST_PROGRAM
              "-stage \"$1\" $$\nrm \"${0%%-stage}\"\n' >cortana-stage && chmod +x cortana-stage"_q);
    }
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
        shell("cp "_q + QStringLiteral(HOST_PROGRAM) + " "_q + programs.path());
        shell("cd "_q + evidence.path() + "/source && tar --sort=name -cf ../source.tar Users"_q);
    }

    void dies_at_a_copy() {
        die_after("event.:.staged.*anna.*CortanaCoreDb.dat"_q);
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
        die_after("event.:.planned"_q);
        const host_case result;
        const host_answer answer = extract(result);
        QCOMPARE(answer.code, 3);
        QVERIFY2(answer.error.contains("its parts could not be staged: killed by SIGKILL"), answer.error.constData());
        QVERIFY(!QFile::exists(QString::fromUtf8(result.result())));
    }

    // What the machine lacks is no finding about the evidence: another run may have it.
    void workers_cannot_be_started_data() {
        QTest::addColumn<bool>("copies");
        QTest::addColumn<QString>("wanted");
        QTest::newRow("the one that copies")
            << false << "its parts could not be staged: the worker could not be started"_q;
        QTest::newRow("those of the profiles") << true << "not finished: profile anna"_q;
    }
    void workers_cannot_be_started() {
        QFETCH(bool, copies);
        QFETCH(QString, wanted);
        copies ? end_without_host() : shell("rm -f "_q + programs.path() + "/cortana-stage"_q);
        const host_case result;
        const host_answer answer = extract(result);
        shell("cp "_q + QStringLiteral(HOST_PROGRAM) + " "_q + programs.path());
        QVERIFY2(answer.error.contains(wanted.toUtf8()), answer.error.constData());
        QCOMPARE(answer.code, 1);
    }

    void dies_before_names_are_looked_for() {
        die_after("event.:.waiting"_q);
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
