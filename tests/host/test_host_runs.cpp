// SPDX-License-Identifier: MIT
// Whole runs of the command-line host over small sources: what it counts, says, keeps and returns.
#include "host_case.h"

#include <QJsonArray>
#include <QtTest>

#include <fcntl.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

// {"anna": 2, "bernd": 1} of the recordings.
QVariantMap rows_by_user(const QJsonObject& summary) {
    QVariantMap rows;
    for (const QJsonValue& row : summary[q("rows")].toArray()) {
        if (row[q("table")].toString() == q("latest_audio_search")) {
            rows.insert(row[q("system_user")].toString(), row[q("rows")].toInt());
        }
    }
    return rows;
}

void add_two_profiles(const host_case& host) {
    host.add_recording("anna", "1.wav");
    host.add_recording("anna", "deeper/2.wav");
    host.add_recording("bernd", "3.wav");
    host.make_folders(host.source() + "/Users/Public");
}

void limit_files(rlim_t size) {
    const rlimit both{size, size};
    ::setrlimit(RLIMIT_FSIZE, &both);
}

const QString one_column = q("select %1 from latest_audio_search order by INT");

} // namespace

class test_host_runs : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void counts_rows_of_each_profile_data() {
        QTest::addColumn<QStringList>("options");
        QTest::addColumn<int>("runs");
        QTest::newRow("one run for each") << QStringList() << 2;
        QTest::newRow("one run for all") << QStringList{q("--all-profiles")} << 1;
        QTest::newRow("enciphered log") << QStringList{q("--encipher-log")} << 2;
    }
    void counts_rows_of_each_profile() {
        QFETCH(QStringList, options);
        const host_case host;
        add_two_profiles(host);
        const host_answer answer = host.extract(options);
        const QJsonObject summary = answer.json();
        QVERIFY2(answer.code == 0, answer.error.constData());
        QCOMPARE(summary[q("exit_code")].toInt(), 0);
        QCOMPARE(rows_by_user(summary), (QVariantMap{{q("anna"), 2}, {q("bernd"), 1}}));
        QCOMPARE(summary[q("sources_found")].toArray().size(), 2);
        QCOMPARE(summary[q("tables")].toArray().size(), 9);
        const host_answer log = host.run({q("log"), q("{R}/cortana_debug.log")});
        QTEST(log.out.count("[find_source_file]---STARTS---"), "runs");
        QCOMPARE(host.query(one_column.arg(q("system_user"))), (QStringList{q("anna"), q("anna"), q("bernd")}));
        QVERIFY(!QFile::exists(QString::fromUtf8(host.result() + "/Artifacts_Result/Cortana/tmp")));
    }

    void adds_to_earlier_rows_or_clears_them() {
        const host_case host;
        add_two_profiles(host);
        QCOMPARE(host.extract().code, 0);
        const QJsonObject second = host.extract({q("--encipher-log")}).json();
        QCOMPARE(second[q("rows_added")].toInt(), 3);
        QCOMPARE(second[q("sources_found")].toArray().size(), 2);
        QCOMPARE(host.query(one_column.arg(q("INT"))).size(), 6);
        QCOMPARE(host.extract({q("--clear")}).json()[q("rows_added")].toInt(), 3);
        QCOMPARE(host.query(one_column.arg(q("INT"))).size(), 3);
    }

    void prints_a_table() {
        const host_case host;
        add_two_profiles(host);
        const QStringList words{q("extract"), q("--tables"), q("searches,latest_audio_search"), q("{S}"), q("{R}")};
        const host_answer answer = host.run(words);
        QCOMPARE(answer.code, 0);
        QCOMPARE(answer.error, QByteArray()); // not a terminal: no progress line
        const QList<QByteArray> lines = answer.out.split('\n');
        QCOMPARE(lines[0].simplified(), QByteArray("rows added anna bernd all"));
        QCOMPARE(lines[1].simplified(), QByteArray("latest_audio_search 2 1 3"));
        QCOMPARE(lines[2].simplified(), QByteArray("searches 0 0 0"));
        QCOMPARE(lines[3].simplified(), QByteArray("all 2 1 3"));
        QVERIFY(answer.out.contains(host.database()) && answer.out.contains(host.log() + " (0 failures)"));
        const host_answer quiet = host.run(words + QStringList{q("--quiet")});
        QCOMPARE(quiet.code, 0);
        QCOMPARE(quiet.out + quiet.error, QByteArray());
    }

    void takes_chosen_profiles_and_their_domain_names() {
        const host_case host;
        add_two_profiles(host);
        host.add_recording("Public", "4.wav");
        const char* const options =
            "--user|bernd=CORP\\bernd|--user|Public|--user|carl|--source-number|7|--os-scheme|W 10";
        const QJsonObject summary = host.extract(q(options).split(QLatin1Char('|'))).json();
        QCOMPARE(rows_by_user(summary), (QVariantMap{{q("Public"), 1}, {q("bernd"), 1}, {q("carl"), 0}}));
        const QString columns = q("system_user||'|'||domain_user||'|'||source_count_name||'|'||os_scheme_display");
        QCOMPARE(host.query(one_column.arg(columns)),
                 (QStringList{q("bernd|CORP\\bernd|Source7|W 10"), q("Public||Source7|W 10")}));
        QCOMPARE(summary[q("notes")].toArray().first()[q("reason")].toString(), q("there is no such profile folder"));
    }

    void works_in_any_environment_data() {
        QTest::addColumn<QStringList>("variables");
        QTest::newRow("none") << QStringList();
        QTest::newRow("POSIX locale") << QStringList{q("LC_ALL=C"), q("HOME=/nonexistent")};
        QTest::newRow("neither locale nor display") << QStringList{q("LANG=xx_XX.ISO-8859-1"), q("DISPLAY=:987")};
    }
    void works_in_any_environment() {
        QFETCH(QStringList, variables);
        const host_case host;
        host.add_recording("jürgen", "größe \xf0\x9f\x8e\xa4.wav");
        for (const char* const kept : {"LSAN_OPTIONS", "UBSAN_OPTIONS"}) { // a sanitized build needs its own ones
            variables << QStringList{q(kept), qEnvironmentVariable(kept)}.join(QLatin1Char('='));
        }
        QProcessEnvironment environment;
        for (const QString& variable : qAsConst(variables)) {
            environment.insert(variable.section(QLatin1Char('='), 0, 0), variable.section(QLatin1Char('='), 1));
        }
        const host_answer answer = host.run(
            {q("extract"), q("--json"), q("{S}"), q("{R}")}, [] {}, environment);
        QCOMPARE(answer.error, QByteArray());
        QCOMPARE(answer.code, 0);
        QCOMPARE(host.query(one_column.arg(q("system_user||'/'||file_name"))),
                 QStringList{q("jürgen/größe \xf0\x9f\x8e\xa4.wav")});
    }

    void passes_no_control_characters_on() {
        const QByteArray user = "line\nbreak \x1b[31m 'q\" --------FAILED------";
        const host_case host;
        host.add_recording(user, "a\n\x1b]0;b.wav");
        host.add_recording("bad\xff\x1b", "c.wav");
        const host_answer answer = host.run({q("extract"), q("--log-terminal"), q("{S}"), q("{R}")});
        QCOMPARE(answer.code, 3); // the second profile's name cannot be passed on, and that is all
        QVERIFY2(answer.error.contains("Users/bad\\xff\\x1b: its name is not UTF-8"), answer.error.constData());
        QVERIFY2(answer.out.contains("(0 failures)"), answer.out.constData());
        QVERIFY(answer.error.contains("FILE EXIST--") && answer.error.contains("line\\nbreak \\x1b[31m"));
        QVERIFY(!answer.error.contains('\x1b') && !answer.out.contains('\x1b'));
        QCOMPARE(host.query(one_column.arg(q("system_user"))), QStringList{QString::fromUtf8(user)});
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
        QCOMPARE(answer.json()[q("problems")].toArray().size(), 3);
        QCOMPARE(answer.json()[q("could_not_read")].toInt(), 3);
        QCOMPARE(rows_by_user(answer.json()), (QVariantMap{{q("anna"), 0}, {q("bernd"), 1}}));
    }

    void finds_nothing() {
        const host_case host;
        host.make_folders(host.source() + "/Users/anna/AppData/Local/Packages/Microsoft.Other");
        const host_answer answer = host.extract();
        QCOMPARE(answer.code, 4);
        QVERIFY2(answer.error.contains("was found in any chosen profile"), answer.error.constData());
        QCOMPARE(answer.json()[q("outcome")].toString(), q("nothing found"));
    }

    // A limit on file sizes stands for a full disk: the database may not grow past what the first run left.
    void keeps_earlier_rows_when_the_disk_is_full() {
        const host_case host;
        host.add_recording("anna", "first.wav");
        QCOMPARE(host.extract({q("--log"), q("{B}/log")}).code, 0);
        for (int i = 0; i < 600; ++i) {
            host.add_recording("anna", QByteArray::number(i) + ".wav");
        }
        host.add_recording("bernd", "last.wav");
        const auto limit = static_cast<rlim_t>(read_file(host.database()).size());
        const host_answer answer = host.extract({q("--log"), q("{B}/log")}, [limit] { limit_files(limit); });
        QCOMPARE(answer.code, 5);
        QVERIFY2(answer.error.contains("rows were lost") || answer.error.contains("cannot be written"),
                 answer.error.constData());
        QCOMPARE(answer.json()[q("not_examined")].toArray(), QJsonArray{q("bernd")});
        QCOMPARE(host.query(one_column.arg(q("file_name"))), QStringList{q("first.wav")});
    }

    void tells_an_unusable_output_data() {
        QTest::addColumn<QByteArray>("words");
        QTest::newRow("database") << QByteArray("file is not a database");
        QTest::newRow("debug log") << QByteArray("is not whole");
        QTest::newRow("standard output") << QByteArray("standard output cannot be written");
    }
    void tells_an_unusable_output() {
        QFETCH(QByteArray, words);
        const QByteArray what = QTest::currentDataTag();
        const host_case host;
        host.add_recording("anna", "a.wav");
        constexpr int limit = 1024 * 1024;
        const QByteArray other = QByteArray(4096, 'x');
        if (what == "database") {
            host.write(host.database(), other);
        } else if (what == "debug log") {
            host.write(host.log(), QByteArray(limit - 100, '\n'));
        }
        const host_answer answer = host.extract({}, [&what] {
            limit_files(limit);
            if (what == "standard output") {
                ::dup2(::open("/dev/full", O_WRONLY), STDOUT_FILENO);
            }
        });
        QCOMPARE(answer.code, 5);
        QVERIFY2(answer.error.contains(words), answer.error.constData());
        if (what == "database") {
            QCOMPARE(read_file(host.database()), other);
        } else {
            QCOMPARE(host.query(one_column.arg(q("file_name"))), QStringList{q("a.wav")});
        }
    }

    void lists_rows_data() {
        QTest::addColumn<QString>("arguments"); // separated by blanks
        QTest::addColumn<int>("code");
        QTest::addColumn<QStringList>("lines"); // how each line begins that is not empty
        const QString file = q("{R}/Artifacts_Result/Cortana/Cortana.sqlite");
        const QStringList none{q("searches"), q("      no rows")};
        const QStringList recordings{q("latest_audio_search"),
                                     q("   1  system_user: anna | domain_user:  | file_name: 1.wav | file_size: "),
                                     q("   2  system_user: anna | domain_user:  | file_name: \\n.wav | file_size: ")};
        QTest::newRow("in table order") << q("--tables searches,latest_audio_search {R}") << 0 << recordings + none;
        QTest::newRow("the file itself") << file + q(" --tables searches") << 0 << none;
        QTest::newRow("no such result") << q("{B}/none") << 5 << QStringList();
        QTest::newRow("no database") << q("{R}/cortana_debug.log") << 5 << QStringList{q("time_reminders")};
        QTest::newRow("unknown table") << q("--tables cookie {R}") << 2 << QStringList();
    }
    void lists_rows() {
        QFETCH(QString, arguments);
        QFETCH(int, code);
        QFETCH(QStringList, lines);
        const host_case host;
        host.add_recording("anna", "1.wav");
        host.add_recording("anna", "deeper/\n.wav");
        QCOMPARE(host.extract().code, 0);
        const host_answer answer = host.run(QStringList(q("rows")) + arguments.split(QLatin1Char(' ')));
        QCOMPARE(answer.code, code);
        QCOMPARE(answer.error.isEmpty(), code == 0);
        const QStringList printed = QString::fromUtf8(answer.out).split(QLatin1Char('\n'), Qt::SkipEmptyParts);
        QVERIFY(printed.size() == lines.size() || code != 0);
        for (int i = 0; i < printed.size(); ++i) {
            QVERIFY2(printed.at(i).startsWith(lines.at(i)), qPrintable(printed.at(i)));
        }
    }
};

QTEST_GUILESS_MAIN(test_host_runs)
#include "test_host_runs.moc"
