// SPDX-License-Identifier: MIT
// Whole runs of the command-line host over small sources: what it counts, says, keeps and returns.
#include "host_case.h"

#include <QJsonArray>
#include <QtTest>

#include <csignal>
#include <fcntl.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

class test_host_runs : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void counts_rows_of_each_profile_data();
    void counts_rows_of_each_profile();
    void adds_to_earlier_rows_or_clears_them();
    void prints_a_table();
    void takes_chosen_profiles_and_their_domain_names();
    void works_in_any_environment_data();
    void works_in_any_environment();
    void passes_no_control_characters_on();
    void tells_what_could_not_be_read();
    void finds_nothing();
    void keeps_earlier_rows_when_the_disk_is_full();
    void tells_an_unusable_output_data();
    void tells_an_unusable_output();
    void lists_rows_data();
    void lists_rows();
    void passes_pipes_by();
};

namespace {

QString q(const char* text) {
    return QString::fromUtf8(text);
}

// {"anna": 2, "bernd": 1} of one table.
QVariantMap rows_by_user(const QJsonObject& summary, const QString& table) {
    QVariantMap rows;
    for (const QJsonValue& row : summary[q("rows")].toArray()) {
        if (row[q("table")].toString() == table) {
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

} // namespace

void test_host_runs::counts_rows_of_each_profile_data() {
    QTest::addColumn<QStringList>("options");
    QTest::addColumn<int>("runs");
    QTest::newRow("one run for each") << QStringList() << 2;
    QTest::newRow("one run for all") << QStringList{q("--all-profiles")} << 1;
    QTest::newRow("enciphered log") << QStringList{q("--encipher-log")} << 2;
}

void test_host_runs::counts_rows_of_each_profile() {
    QFETCH(QStringList, options);
    QFETCH(int, runs);
    const host_case host;
    add_two_profiles(host);
    const host_answer answer = host.extract(options);
    const QJsonObject summary = answer.json();
    QVERIFY2(answer.code == 0, answer.error.constData());
    QCOMPARE(summary[q("exit_code")].toInt(), 0);
    QCOMPARE(rows_by_user(summary, q("latest_audio_search")), (QVariantMap{{q("anna"), 2}, {q("bernd"), 1}}));
    QCOMPARE(summary[q("sources_found")].toArray().size(), 2);
    QCOMPARE(summary[q("tables")].toArray().size(), 9);
    const host_answer log = host.run({q("log"), q("{R}/cortana_debug.log")});
    QCOMPARE(log.out.count("[find_source_file]---STARTS---"), runs);
    QCOMPARE(host.query(q("select system_user from latest_audio_search order by INT")),
             (QStringList{q("anna"), q("anna"), q("bernd")}));
    QVERIFY(!QFile::exists(QString::fromUtf8(host.result() + "/Artifacts_Result/Cortana/tmp")));
}

void test_host_runs::adds_to_earlier_rows_or_clears_them() {
    const host_case host;
    add_two_profiles(host);
    QCOMPARE(host.extract().code, 0);
    const QJsonObject second = host.extract({q("--encipher-log")}).json();
    QCOMPARE(second[q("rows_added")].toInt(), 3);
    QCOMPARE(second[q("sources_found")].toArray().size(), 2);
    QCOMPARE(host.query(q("select count(*) from latest_audio_search")), QStringList{q("6")});
    const QJsonObject third = host.extract({q("--clear")}).json();
    QCOMPARE(third[q("rows_added")].toInt(), 3);
    QCOMPARE(host.query(q("select count(*) from latest_audio_search")), QStringList{q("3")});
}

void test_host_runs::prints_a_table() {
    const host_case host;
    add_two_profiles(host);
    const QStringList words{q("extract"), q("--tables"), q("searches,latest_audio_search"), q("{S}"), q("{R}")};
    const host_answer answer = host.run(words);
    QCOMPARE(answer.code, 0);
    QCOMPARE(answer.error, QByteArray()); // not a terminal: no progress line
    const QStringList lines = QString::fromUtf8(answer.out).split(QLatin1Char('\n'));
    QCOMPARE(lines[0].simplified(), q("rows added anna bernd all"));
    QCOMPARE(lines[1].simplified(), q("latest_audio_search 2 1 3"));
    QCOMPARE(lines[2].simplified(), q("searches 0 0 0"));
    QCOMPARE(lines[3].simplified(), q("all 2 1 3"));
    QVERIFY2(answer.out.contains(host.database()) && answer.out.contains(host.log() + " (0 failures)"),
             answer.out.constData());
    const host_answer quiet = host.run(words + QStringList{q("--quiet")});
    QCOMPARE(quiet.code, 0);
    QCOMPARE(quiet.out + quiet.error, QByteArray());
}

void test_host_runs::takes_chosen_profiles_and_their_domain_names() {
    const host_case host;
    add_two_profiles(host);
    host.add_recording("Public", "4.wav");
    const QJsonObject summary =
        host.extract({q("--user"), q("bernd=CORP\\bernd"), q("--user"), q("Public"), q("--user"), q("carl"),
                      q("--source-number"), q("7"), q("--os-scheme"), q("Windows 10")})
            .json();
    QCOMPARE(rows_by_user(summary, q("latest_audio_search")),
             (QVariantMap{{q("Public"), 1}, {q("bernd"), 1}, {q("carl"), 0}}));
    QCOMPARE(host.query(q("select system_user||'|'||domain_user||'|'||source_count_name||'|'||os_scheme_display "
                          "from latest_audio_search order by INT")),
             (QStringList{q("bernd|CORP\\bernd|Source7|Windows 10"), q("Public||Source7|Windows 10")}));
    QCOMPARE(summary[q("notes")].toArray().first()[q("reason")].toString(), q("there is no such profile folder"));
}

void test_host_runs::works_in_any_environment_data() {
    QTest::addColumn<QStringList>("variables");
    QTest::newRow("none") << QStringList();
    QTest::newRow("POSIX locale") << QStringList{q("LC_ALL=C"), q("HOME=/nonexistent")};
    QTest::newRow("locale that is not there") << QStringList{q("LANG=xx_XX.ISO-8859-1")};
    QTest::newRow("display that is not there") << QStringList{q("DISPLAY=:987"), q("LC_CTYPE=C")};
}

void test_host_runs::works_in_any_environment() {
    QFETCH(QStringList, variables);
    const host_case host;
    host.add_recording("jürgen", "größe \xf0\x9f\x8e\xa4.wav");
    QProcessEnvironment environment;
    for (const char* const kept : {"LSAN_OPTIONS", "UBSAN_OPTIONS"}) { // a sanitized build needs its own ones
        environment.insert(QString::fromLatin1(kept), qEnvironmentVariable(kept));
    }
    for (const QString& variable : variables) {
        environment.insert(variable.section(QLatin1Char('='), 0, 0), variable.section(QLatin1Char('='), 1));
    }
    const host_answer answer = host.run({q("extract"), q("--json"), q("{S}"), q("{R}")}, {}, environment);
    QCOMPARE(answer.error, QByteArray());
    QCOMPARE(answer.code, 0);
    QCOMPARE(host.query(q("select system_user||'/'||file_name from latest_audio_search")),
             QStringList{q("jürgen/größe \xf0\x9f\x8e\xa4.wav")});
}

void test_host_runs::passes_no_control_characters_on() {
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
    QCOMPARE(host.query(q("select system_user from latest_audio_search")), QStringList{QString::fromUtf8(user)});
}

void test_host_runs::tells_what_could_not_be_read() {
    const host_case host;
    add_two_profiles(host);
    const QByteArray closed = host.source() + "/Users/anna/AppData/Local";
    ::chmod(closed.constData(), 0);
    const host_answer answer = host.extract({}, respect_permissions);
    ::chmod(closed.constData(), 0755);
    QCOMPARE(answer.code, 3);
    QVERIFY2(answer.error.contains("could not read: " + closed + ": Permission denied"), answer.error.constData());
    QCOMPARE(answer.json()[q("problems")].toArray().size(), 1);
    QCOMPARE(rows_by_user(answer.json(), q("latest_audio_search")), (QVariantMap{{q("anna"), 0}, {q("bernd"), 1}}));
}

void test_host_runs::finds_nothing() {
    const host_case host;
    host.make_folders(host.source() + "/Users/anna/AppData/Local/Packages/Microsoft.Other");
    const host_answer answer = host.extract();
    QCOMPARE(answer.code, 4);
    QVERIFY2(answer.error.contains("was found in any chosen profile"), answer.error.constData());
    QCOMPARE(answer.json()[q("outcome")].toString(), q("nothing found"));
}

// A limit on file sizes stands for a full disk: the database may not grow past what the first run left.
void test_host_runs::keeps_earlier_rows_when_the_disk_is_full() {
    const host_case host;
    host.add_recording("anna", "first.wav");
    QCOMPARE(host.extract({q("--log"), q("{B}/log")}).code, 0);
    for (int i = 0; i < 600; ++i) {
        host.add_recording("anna", QByteArray::number(i) + ".wav");
    }
    host.add_recording("bernd", "last.wav");
    const auto limit = static_cast<rlim_t>(QFileInfo(QString::fromUtf8(host.database())).size());
    const host_answer answer = host.extract({q("--log"), q("{B}/log")}, [limit] {
        const rlimit size{limit, limit};
        ::setrlimit(RLIMIT_FSIZE, &size);
    });
    QCOMPARE(answer.code, 5);
    QVERIFY2(answer.error.contains("rows were lost") || answer.error.contains("cannot be written"),
             answer.error.constData());
    QCOMPARE(answer.json()[q("not_examined")].toArray(), QJsonArray{q("bernd")});
    QCOMPARE(host.query(q("select file_name from latest_audio_search")), QStringList{q("first.wav")});
}

void test_host_runs::tells_an_unusable_output_data() {
    QTest::addColumn<QString>("what");
    QTest::addColumn<QString>("words");
    QTest::newRow("database") << "database"
                              << "file is not a database";
    QTest::newRow("debug log") << "log"
                               << "is not whole";
    QTest::newRow("standard output") << "stdout"
                                     << "standard output cannot be written";
}

void test_host_runs::tells_an_unusable_output() {
    QFETCH(QString, what);
    QFETCH(QString, words);
    const host_case host;
    host.add_recording("anna", "a.wav");
    constexpr int limit = 1024 * 1024;
    const QByteArray other = QByteArray(4096, 'x');
    if (what == q("database")) {
        host.write(host.database(), other);
    } else if (what == q("log")) {
        host.write(host.log(), QByteArray(limit - 100, '\n'));
    }
    const host_answer answer = host.extract({}, [&what] {
        const rlimit size{limit, limit};
        ::setrlimit(RLIMIT_FSIZE, &size);
        if (what == QLatin1String("stdout")) {
            ::dup2(::open("/dev/full", O_WRONLY), STDOUT_FILENO);
        }
    });
    QCOMPARE(answer.code, 5);
    QVERIFY2(answer.error.contains(words.toUtf8()), answer.error.constData());
    if (what == q("database")) {
        QCOMPARE(read_file(host.database()), other);
    } else {
        QCOMPARE(host.query(q("select count(*) from latest_audio_search")), QStringList{q("1")});
    }
}

void test_host_runs::lists_rows_data() {
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<int>("code");
    QTest::addColumn<QStringList>("lines"); // how each line begins that is not empty
    const QStringList recordings{q("latest_audio_search"),
                                 q("   1  system_user: anna | domain_user:  | file_name: 1.wav | file_size: "),
                                 q("   2  system_user: anna | domain_user:  | file_name: \\n.wav | file_size: ")};
    const QStringList none{q("searches"), q("      no rows")};
    QTest::newRow("in table order") << QStringList{q("--tables"), q("searches,latest_audio_search"), q("{R}")} << 0
                                    << recordings + none;
    QTest::newRow("the file itself") << QStringList{q("{R}/Artifacts_Result/Cortana/Cortana.sqlite"), q("--tables"),
                                                    q("searches")}
                                     << 0 << none;
    QTest::newRow("no such result") << QStringList{q("{B}/none")} << 5 << QStringList();
    QTest::newRow("no database") << QStringList{q("{R}/cortana_debug.log")} << 5 << QStringList{q("time_reminders")};
    QTest::newRow("unknown table") << QStringList{q("--tables"), q("cookie"), q("{R}")} << 2 << QStringList();
}

void test_host_runs::lists_rows() {
    QFETCH(QStringList, arguments);
    QFETCH(int, code);
    QFETCH(QStringList, lines);
    const host_case host;
    host.add_recording("anna", "1.wav");
    host.add_recording("anna", "deeper/\n.wav");
    QCOMPARE(host.extract().code, 0);
    const host_answer answer = host.run(QStringList(q("rows")) + arguments);
    QCOMPARE(answer.code, code);
    QCOMPARE(answer.error.isEmpty(), code == 0);
    const QStringList printed = QString::fromUtf8(answer.out).split(QLatin1Char('\n'), Qt::SkipEmptyParts);
    QVERIFY(printed.size() == lines.size() || code != 0);
    for (int i = 0; i < printed.size(); ++i) {
        QVERIFY2(printed.at(i).startsWith(lines.at(i)), qPrintable(printed.at(i)));
    }
}

// A pipe in a database's or hive's place would make an open wait for ever.
void test_host_runs::passes_pipes_by() {
    const host_case host;
    host.add_recording("anna", "1.wav");
    const QByteArray profile = host.source() + "/Users/anna/";
    host.make_folders(profile + "AppData/Local/Microsoft/Windows/WebCache");
    for (const char* name : {"NTUSER.DAT", "AppData/Local/Microsoft/Windows/WebCache/WebCacheV01.dat"}) {
        QCOMPARE(::mkfifo((profile + name).constData(), 0600), 0);
    }
    const host_answer answer = host.extract();
    QCOMPARE(answer.code, 3);
    QCOMPARE(answer.json()[q("could_not_read")].toInt(), 2);
    QCOMPARE(answer.json()[q("rows_added")].toInt(), 1);
}

QTEST_GUILESS_MAIN(test_host_runs)
#include "test_host_runs.moc"
