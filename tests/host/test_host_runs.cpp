// SPDX-License-Identifier: MIT
// Whole runs of the command-line host over small sources: what it counts, says, keeps and returns.
#include "host_case.h"

#include <QJsonArray>
#include <QtTest>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

// {"anna": 2, "bernd": 1} of the recordings.
QVariantMap rows_by_user(const QJsonObject& summary) {
    QVariantMap rows;
    for (const QJsonValue& row : summary["rows"_q].toArray()) {
        if (row["table"_q].toString() == "latest_audio_search"_q) {
            rows.insert(row["system_user"_q].toString(), row["rows"_q].toInt());
        }
    }
    return rows;
}

void add_two_profiles(const host_case& host) {
    host.add_recording("anna", "1.wav");
    host.add_recording("anna", "deeper/\n.wav");
    host.add_recording("bernd", "3.wav");
    host.make_folders(host.source() + "/Users/Public");
}

void limit_files(rlim_t size) {
    const rlimit both{size, size};
    ::setrlimit(RLIMIT_FSIZE, &both);
}

} // namespace

class test_host_runs : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void counts_rows_of_each_profile_data() {
        QTest::addColumn<QString>("option");
        QTest::addColumn<int>("runs");
        QTest::addColumn<int>("rows_kept"); // of an earlier run
        QTest::newRow("one run for each") << "" << 2 << 3;
        QTest::newRow("one run for all") << "--all-profiles" << 1 << 3;
        QTest::newRow("enciphered log") << "--encipher-log" << 2 << 3;
        QTest::newRow("cleared tables") << "--clear" << 2 << 0;
    }
    void counts_rows_of_each_profile() {
        QFETCH(QString, option);
        QFETCH(int, runs);
        QFETCH(int, rows_kept);
        const host_case host;
        add_two_profiles(host);
        QCOMPARE(host.extract().code, 0);
        const host_answer answer = host.extract(option);
        const QJsonObject summary = answer.json();
        QVERIFY2(answer.code == 0, answer.error.constData());
        QCOMPARE(summary["exit_code"_q].toInt(), 0);
        QCOMPARE(summary["rows_added"_q].toInt(), 3);
        QCOMPARE(rows_by_user(summary), (QVariantMap{{"anna"_q, 2}, {"bernd"_q, 1}}));
        QCOMPARE(summary["sources_found"_q].toArray().size(), 2);
        QCOMPARE(summary["tables"_q].toArray().size(), 9);
        const QByteArray start = "[find_source_file]---STARTS---";
        QCOMPARE(host.run("log {R}/cortana_debug.log"_q).out.count(start), 2 + runs);
        const int in_plain = option == "--encipher-log"_q ? 2 : 2 + runs;
        QCOMPARE(whole_file(QString::fromUtf8(host.log())).count(start), in_plain);
        const QString anna = "system_user=text:anna"_q;
        QCOMPARE(host.recordings({"system_user"_q}).mid(rows_kept),
                 (QStringList{anna, anna, "system_user=text:bernd"_q}));
        QVERIFY(!QFile::exists(QString::fromUtf8(host.result() + "/Artifacts_Result/Cortana/tmp")));
    }

    void versions_come_before_arguments() {
        const host_case host;
        const QByteArray versions = host.run("--version"_q).out;
        QVERIFY(versions.startsWith("cortana ") && versions.contains("\nlibesedb 2") &&
                versions.contains("\nSQLite 3"));
        for (const char* command : {"extract", "rows", "log"}) {
            const host_answer answer = host.run(QLatin1String(command) + " --version"_q);
            QCOMPARE(answer.code, 0);
            QCOMPARE(answer.out, versions);
        }
    }

    void prints_tables() {
        const host_case host;
        add_two_profiles(host);
        const QString tables = " --tables searches,latest_audio_search "_q;
        const host_answer answer = host.run("extract {S} {R}"_q + tables);
        QCOMPARE(answer.code, 0);
        QCOMPARE(answer.error, QByteArray()); // not a terminal: no progress line
        const QByteArray counts = answer.out.simplified();
        QVERIFY2(counts.startsWith("rows added anna bernd all latest_audio_search 2 1 3 searches 0 0 0 all 2 1 3 3 "),
                 counts.constData());
        QVERIFY(answer.out.contains(host.database()) && answer.out.contains(host.log() + " (0 failures)"));
        QString rows = QString::fromUtf8(host.run("rows {R}"_q + tables).out);
        rows.remove(QRegularExpression(" \\| file_size: .*"_q));
        QCOMPARE(rows, "latest_audio_search\n"
                       "   1  system_user: anna | domain_user:  | file_name: 1.wav\n"
                       "   2  system_user: anna | domain_user:  | file_name: \\n.wav\n"
                       "   3  system_user: bernd | domain_user:  | file_name: 3.wav\n"
                       "\nsearches\n      no rows\n\n"_q);
        const host_answer of_file = host.run("rows --tables searches "_q + QString::fromUtf8(host.database()));
        QCOMPARE(of_file.out + of_file.error, QByteArray("searches\n      no rows\n\n"));
        QCOMPARE(of_file.code, 0);
        const host_answer quiet = host.run("extract --quiet {S} {R}"_q + tables);
        QCOMPARE(quiet.code, 0);
        QCOMPARE(quiet.out + quiet.error, QByteArray());
    }

    void takes_chosen_profiles_and_their_domain_names() {
        const host_case host;
        add_two_profiles(host);
        host.add_recording("Public", "4.wav");
        const QString chosen = "--user bernd=CORP\\bernd --user Public --user carl --source-number 7 --os-scheme W10"_q;
        const QJsonObject summary = host.extract(chosen).json();
        QCOMPARE(rows_by_user(summary), (QVariantMap{{"Public"_q, 1}, {"bernd"_q, 1}, {"carl"_q, 0}}));
        const QString row = "system_user=text:%1 | domain_user=text:%2 | source_count_name=text:Source7 | "
                            "os_scheme_display=text:W10"_q;
        QCOMPARE(host.recordings({"system_user"_q, "domain_user"_q, "source_count_name"_q, "os_scheme_display"_q}),
                 (QStringList{row.arg("bernd"_q, "CORP\\bernd"_q), row.arg("Public"_q, ""_q)}));
        QCOMPARE(summary["notes"_q].toArray().first()["reason"_q].toString(), "there is no such profile folder"_q);
        const host_answer nothing = host.extract("--user carl"_q);
        QCOMPARE(nothing.code, 4);
        QVERIFY2(nothing.error.contains("was found in any chosen profile"), nothing.error.constData());
        QCOMPARE(nothing.json()["outcome"_q].toString(), "nothing found"_q);
    }

    void works_in_any_environment_data() {
        QTest::addColumn<QByteArrayList>("variables");
        QTest::newRow("none") << QByteArrayList();
        QTest::newRow("POSIX locale") << QByteArrayList{"LC_ALL=C", "HOME=/nonexistent"};
        QTest::newRow("neither locale nor display") << QByteArrayList{"LANG=xx_XX.ISO-8859-1", "DISPLAY=:987"};
    }
    void works_in_any_environment() {
        QFETCH(QByteArrayList, variables);
        const host_case host;
        host.add_recording("jürgen", "größe \xf0\x9f\x8e\xa4.wav");
        for (const char* const kept : {"LSAN_OPTIONS", "UBSAN_OPTIONS"}) { // a sanitized build needs its own ones
            variables << QByteArray(kept) + '=' + qgetenv(kept);
        }
        const host_answer answer = host.extract({}, [&variables] {
            ::clearenv();
            for (QByteArray& variable : variables) {
                ::putenv(variable.data());
            }
        });
        QCOMPARE(answer.error, QByteArray());
        QCOMPARE(answer.code, 0);
        QCOMPARE(host.recordings({"system_user"_q, "file_name"_q}),
                 QStringList("system_user=text:jürgen | file_name=text:größe \xf0\x9f\x8e\xa4.wav"_q));
    }

    void passes_no_control_characters_on() {
        const QByteArray user = "line\nbreak \x1b[31m 'q\" --------FAILED------";
        const host_case host;
        host.add_recording(user, "a\n\x1b]0;b.wav");
        host.add_recording("bad\xff\x1b", "c.wav");
        const host_answer answer = host.run("extract --log-terminal {S} {R}"_q);
        QCOMPARE(answer.code, 3); // the second profile's name cannot be passed on, and that is all
        QVERIFY2(answer.error.contains("Users/bad\\xff\\x1b: its name is not UTF-8"), answer.error.constData());
        QVERIFY2(answer.out.contains("(0 failures)"), answer.out.constData());
        QVERIFY(answer.error.contains("FILE EXIST--") && answer.error.contains("line\\nbreak \\x1b[31m"));
        QVERIFY(!answer.error.contains('\x1b') && !answer.out.contains('\x1b'));
        QCOMPARE(host.recordings({"system_user"_q}), QStringList("system_user=text:"_q + QString::fromUtf8(user)));
    }

    // A closed folder in the one profile, and in the other a pipe in a database's and a hive's place: opening one would
    // make the run wait for ever.
    void tells_what_could_not_be_read() {
        const host_case host;
        add_two_profiles(host);
        const QByteArray closed = host.source() + "/Users/anna/AppData/Local";
        const QByteArray bernd = host.source() + "/Users/bernd/";
        host.make_folders(bernd + "AppData/Local/Microsoft/Windows/WebCache");
        for (const char* name : {"NTUSER.DAT", "AppData/Local/Microsoft/Windows/WebCache/WebCacheV01.dat"}) {
            QCOMPARE(::mkfifo((bernd + name).constData(), 0600), 0);
        }
        ::chmod(closed.constData(), 0);
        const host_answer answer = host.extract({}, respect_permissions);
        ::chmod(closed.constData(), 0755);
        QCOMPARE(answer.code, 3);
        QVERIFY2(answer.error.contains("could not read: " + closed + ": Permission denied"), answer.error.constData());
        QCOMPARE(answer.json()["problems"_q].toArray().size(), 3);
        QCOMPARE(answer.json()["could_not_read"_q].toInt(), 3);
        QCOMPARE(rows_by_user(answer.json()), (QVariantMap{{"anna"_q, 0}, {"bernd"_q, 1}}));
    }

    // A limit on file sizes stands for a full disk: the database may not grow past what the first run left.
    void keeps_earlier_rows_when_the_disk_is_full() {
        const host_case host;
        host.add_recording("anna", "first.wav");
        QCOMPARE(host.extract("--log {B}/log"_q).code, 0);
        for (int i = 0; i < 600; ++i) {
            host.add_recording("anna", QByteArray::number(i) + ".wav");
        }
        host.add_recording("bernd", "last.wav");
        const auto limit = static_cast<rlim_t>(QFileInfo(QString::fromUtf8(host.database())).size());
        const host_answer answer = host.extract("--jobs 1 --log {B}/log"_q, [limit] { limit_files(limit); });
        QCOMPARE(answer.code, 5);
        QVERIFY2(answer.error.contains("rows were lost") || answer.error.contains("cannot be written"),
                 answer.error.constData());
        QCOMPARE(answer.json()["not_examined"_q].toArray(), QJsonArray{"bernd"_q});
        QCOMPARE(host.recordings({"file_name"_q}), QStringList("file_name=text:first.wav"_q));
    }

    // Another file where the database is due, a debug log that may not grow, and a full standard output.
    void tells_an_unusable_output_data() {
        QTest::addColumn<QByteArray>("words");
        QTest::addColumn<QByteArray>("in_the_way");
        QTest::newRow("database") << QByteArray("file is not a database") << QByteArray(4096, 'x');
        QTest::newRow("debug log") << QByteArray("is not whole") << QByteArray(1024 * 1024 - 100, '\n');
        QTest::newRow("standard output") << QByteArray("standard output cannot be written") << QByteArray();
    }
    void tells_an_unusable_output() {
        QFETCH(QByteArray, words);
        QFETCH(QByteArray, in_the_way);
        const bool is_database = in_the_way.startsWith('x');
        const host_case host;
        host.add_recording("anna", "a.wav");
        host.write(is_database ? host.database() : host.log(), in_the_way);
        const host_answer answer = host.extract({}, [&in_the_way] {
            limit_files(1024 * 1024);
            if (in_the_way.isEmpty()) {
                ::dup2(::open("/dev/full", O_WRONLY), STDOUT_FILENO);
            }
        });
        QCOMPARE(answer.code, 5);
        QVERIFY2(answer.error.contains(words), answer.error.constData());
        if (is_database) {
            QCOMPARE(whole_file(QString::fromUtf8(host.database())), in_the_way);
        } else {
            QCOMPARE(host.recordings({"file_name"_q}), QStringList("file_name=text:a.wav"_q));
        }
    }

    void exports_at_the_end_data() {
        QTest::addColumn<QByteArray>("link"); // stands where the exports go
        QTest::addColumn<int>("code");
        QTest::newRow("written") << QByteArray() << 0;
        QTest::newRow("cannot be written") << QByteArray("/tmp") << 5;
    }
    void exports_at_the_end() {
        QFETCH(QByteArray, link);
        QFETCH(int, code);
        const host_case host;
        add_two_profiles(host);
        const QByteArray folder = host.result() + "/Artifacts_Result/Cortana";
        host.make_folders(folder);
        if (!link.isEmpty()) {
            QCOMPARE(::symlink(link.constData(), (folder + "/exports").constData()), 0);
        }
        const host_answer answer = host.extract("--export html,csv"_q);
        QCOMPARE(answer.code, code);
        const QJsonObject exports = answer.json()["exports"_q].toObject();
        QCOMPARE(exports["error"_q].toString().isEmpty(), code == 0);
        QCOMPARE(QFile::exists(QString::fromUtf8(folder) + "/exports/report.html"_q), code == 0);
        qint64 rows = 0;
        for (const QJsonValue& table : exports["tables"_q].toArray()) {
            rows += table["rows_out"_q].toInt();
        }
        QCOMPARE(rows, code == 0 ? 6 : 0); // three in each format
        QCOMPARE(host.recordings({"file_name"_q}).size(), 3);
        QVERIFY(whole_file(QString::fromUtf8(folder) + "/run.json"_q).contains("\"exit_code\": 0"));
    }
};

QTEST_GUILESS_MAIN(test_host_runs)
#include "test_host_runs.moc"
