// SPDX-License-Identifier: MIT
// The searches step over written hives: rows with their stored types, log lines, broken hives, cancel.
#include "evidence/sample_source.h"
#include "extractors/search_procedure.h"
#include "extractors/search_text.h"
#include "registry/search_from_com.h"
#include "tests/registry/hive_fixture.h"
#include "tests/support/test_support.h"

#include <QtTest>

namespace {

const QString explorer = QStringLiteral("SOFTWARE\\Microsoft\\Windows\\CurrentVersion\\Explorer\\");
const QString recents = QStringLiteral("cortana_winos::extract_search_from_recents:-- ");
const QString com = QStringLiteral("cortana_winos::extract_search_from_com_registry:-- ");
const QString step = QStringLiteral("cortana_winos::extract_searches:-- ");
constexpr char insert_statement[] =
    "INSERT INTO searches(bookmark,system_user,domain_user,search_keyword,search_timestamp,source_file, "
    "os_scheme_display,source_count_name) VALUES (0,?,?,?,?,?,?,?)";
// The driver names the placeholders.
const QString executed = QString(QLatin1String(insert_statement))
                             .replace(QLatin1String("?,?,?,?,?,?,?"), QLatin1String(":a,:bb,:bc,:bd,:be,:bf,:bg"));
const QString anna = QStringLiteral("Users/anna/NTUSER.DAT");
const QString bernd = QStringLiteral("Users/bernd/NTUSER.DAT");

// A hive with these data in values of a ".&input=" key and these keys below the file extensions.
QByteArray search_hive(const QVector<QByteArray>& recent_values, const QStringList& extensions = {}) {
    hive_writer hive;
    QVector<hive_value> values;
    for (const QByteArray& data : recent_values) {
        values.append(value_of(QString::number(values.size()), data));
    }
    if (!values.isEmpty()) {
        hive.set_values(hive.add_path(explorer + QStringLiteral("RecentDocs\\.&input=x")), values);
    }
    for (const QString& name : extensions) {
        hive.add_path(explorer + QStringLiteral("FileExts\\") + name);
    }
    return hive.bytes();
}

QStringList run(const test_case_folder& folder) {
    const auto front = folder.make_front({QStringLiteral("searches")});
    front->find_source_file();
    front->extract_searches();
    return folder.dump(QStringLiteral("searches"),
                       {QStringLiteral("search_keyword"), QStringLiteral("search_timestamp")});
}

QString row(const char* keyword, const char* time) {
    return QStringLiteral("search_keyword=%1 | search_timestamp=%2")
        .arg(QString::fromUtf8(keyword), QLatin1String(time));
}

QList<QPair<QString, QString>> two_users() {
    return {{QStringLiteral("anna"), QStringLiteral("CORP\\anna")}, {QStringLiteral("bernd"), QString()}};
}

} // namespace

class test_searches : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void rows_data();
    void rows();
    void whole_rows_of_the_sample();
    void log_of_a_run();
    void log_of_failures();
    void goes_on_with_the_next_user_data();
    void goes_on_with_the_next_user();
    void cancelled_before_it_starts();
    void cancel_keeps_what_was_written_data();
    void cancel_keeps_what_was_written();
    void epoch_of_filetime_text_data();
    void epoch_of_filetime_text();
};

void test_searches::rows_data() {
    QTest::addColumn<QByteArray>("hive");
    QTest::addColumn<QStringList>("rows");
    const QByteArray large = "search?q=" + QByteArray(1000000, 'x') + "&sbts=5.";
    QTest::newRow("values") << search_hive({"search?q=weather&sbts=1589212345678.lnk", "search?q=a&sbts=never.",
                                            "search?q=a%20b&", "sbts=1589212345.", "&sbts=.", "&", "", " ", "x",
                                            "search?q=&sbts=7.", utf16_text(QStringLiteral("search?q=odd&")) + 'x'})
                            << QStringList{row("text:weather", "integer:1589212345"),
                                           row("text:a", "text:never"),
                                           row("text:a%20b", "null:"),
                                           row("null:", "integer:1589212345"),
                                           row("text:", "integer:7"),
                                           row("text:odd", "null:")};
    QTest::newRow("1 MB of text") << search_hive({large})
                                  << QStringList{
                                         row("text:", "integer:5")
                                             .replace(QStringLiteral("text:"),
                                                      QStringLiteral("text:") + QString(1000000, QLatin1Char('x')))};
    QTest::newRow("names") << search_hive({}, {QStringLiteral(".com/search?q=new%20york&sbts=1589212345678"),
                                               QStringLiteral(".com/search?q=weather"), QStringLiteral(".company"),
                                               QStringLiteral(".com/search?q=caf\u00e9&"),
                                               QStringLiteral(".com&sbts=15892123456789")})
                           << QStringList{row("null:", "integer:15892123456789"), row("text:caf\u00c3\u00a9", "null:"),
                                          row("text:new york", "integer:1589212345")};
    QTest::newRow("values before names") << search_hive({"search?q=b&"}, {QStringLiteral(".com/search?q=a&")})
                                         << QStringList{row("text:b", "null:"), row("text:a", "null:")};
    QTest::newRow("neither key") << search_hive({}) << QStringList();
}

void test_searches::rows() {
    QFETCH(QByteArray, hive);
    const test_case_folder folder;
    folder.write_file(anna, hive);
    QTEST(run(folder), "rows");
}

void test_searches::whole_rows_of_the_sample() {
    test_case_folder folder(two_users());
    int number = 0;
    for (const QString& user : {QStringLiteral("anna"), QStringLiteral("bernd")}) {
        QVERIFY(write_sample_hive({folder.root(), user, number++}));
    }
    run(folder);
    QVERIFY(matches_golden(folder.dump(QStringLiteral("searches")), QStringLiteral(GOLDEN_DIR "/sample_searches.txt")));
}

void test_searches::log_of_a_run() {
    test_case_folder folder;
    folder.write_file(anna, search_hive({"search?q=a&"}));
    const auto front = folder.make_front();
    front->find_source_file();
    folder.take_log();
    front->extract_searches();
    QCOMPARE(folder.take_log(),
             (QStringList{step + QStringLiteral("[extract_searches] ----- STARTS ------"),
                          recents + QStringLiteral("[extract_search_from_recents] ----- STARTS ------"),
                          recents + QStringLiteral("[extract_search_from_recents] ----- ENDS ------"),
                          com + QStringLiteral("[extract_search_from_com_registry] ----- STARTS ------"),
                          com + QStringLiteral("[extract_search_from_com_registry] ----- ENDS ------"),
                          step + QStringLiteral("[extract_searches] ----- ENDS ------")}));
}

void test_searches::log_of_failures() {
    test_case_folder folder;
    folder.write_file(anna,
                      search_hive({"search?q=a&", "search?q=refused&", "search?q=b&"},
                                  {QStringLiteral(".com/search?q=refused&"), QStringLiteral(".com/search?q=z&")}));
    folder.execute(QStringLiteral("create trigger refuse before insert on searches when new.search_keyword = 'refused' "
                                  "begin select raise(abort, 'not this one'); end"));
    QCOMPARE(run(folder), (QStringList{row("text:a", "null:"), row("text:b", "null:"), row("text:z", "null:")}));
    const QStringList failures = folder.take_log().filter(QRegularExpression(QStringLiteral("FAILED|not this|INSERT")));
    QCOMPARE(
        failures,
        (QStringList{recents + QStringLiteral("[extract_search_from_recents] --------INSERTION Query ----FAILED------"),
                     recents + QStringLiteral("not this one Unable to fetch row"), recents + executed,
                     com + QStringLiteral("--------INSERTION Query ----FAILED------RESULT/Cortana.sqlite"),
                     com + QStringLiteral("Error :- not this one Unable to fetch row"),
                     com + QStringLiteral("Query :- ") + executed}));

    const auto front = folder.make_front();
    front->winos_set_destination_location(folder.result_dir(), folder.result_dir(), folder.result_dir());
    front->extract_searches();
    QCOMPARE(folder.take_log(),
             (QStringList{
                 step + QStringLiteral("[extract_searches] ----- STARTS ------"),
                 recents + QStringLiteral("[extract_search_from_recents] ----- STARTS ------"),
                 recents + QStringLiteral("[extract_search_from_recents]Destination Db opening ---FAILED--- RESULT/"),
                 recents + QStringLiteral("unable to open database file Error opening database"),
                 com + QStringLiteral("[extract_search_from_com_registry] ----- STARTS ------"),
                 com + QStringLiteral("[extract_search_from_com_registry]Destination Db opening ---FAILED--- RESULT/"),
                 com + QStringLiteral("unable to open database file Error opening database"),
                 step + QStringLiteral("[extract_searches] ----- ENDS ------")}));
}

void test_searches::goes_on_with_the_next_user_data() {
    QTest::addColumn<QByteArray>("hive"); // of the first user; null: a folder in the hive's place
    QTest::addColumn<bool>("is_read");
    const QByteArray sound = search_hive({"search?q=first&"});
    QByteArray dirty = sound;
    hive_damage::make_dirty(dirty);
    QByteArray spoilt = sound;
    hive_damage::spoil_block(spoilt);
    QTest::newRow("sound") << sound << true;
    QTest::newRow("dirty") << dirty << true;
    QTest::newRow("bad block") << spoilt << false;
    QTest::newRow("cut off") << sound.left(sound.size() - 1000) << false;
    QTest::newRow("zero length") << QByteArray("") << false;
    QTest::newRow("without the keys") << empty_hive() << false;
    QTest::newRow("a folder") << QByteArray() << false;
}

void test_searches::goes_on_with_the_next_user() {
    QFETCH(QByteArray, hive);
    QFETCH(bool, is_read);
    test_case_folder folder(two_users());
    folder.write_file(hive.isNull() ? anna + QStringLiteral("/file") : anna, hive);
    folder.write_file(bernd, search_hive({"search?q=second&"}));
    QStringList wanted{row("text:second", "null:")};
    if (is_read) {
        wanted.prepend(row("text:first", "null:"));
    }
    QCOMPARE(run(folder), wanted);
    QVERIFY(folder.take_log().filter(QStringLiteral("FAILED")).isEmpty());
}

void test_searches::cancelled_before_it_starts() {
    test_case_folder folder;
    folder.write_file(anna, search_hive({"search?q=a&"}, {QStringLiteral(".com/search?q=z&")}));
    const auto front = folder.make_front();
    front->find_source_file();
    folder.take_log();
    front->winos_cancel_extraction();
    front->extract_searches();
    QVERIFY(folder.dump(QStringLiteral("searches")).isEmpty());
    QCOMPARE(folder.take_log().filter(QStringLiteral("ENDS")),
             QStringList{step + QStringLiteral("[extract_searches] ----- ENDS ------")});
}

// Two hives of two rows each.
void test_searches::cancel_keeps_what_was_written_data() {
    QTest::addColumn<int>("rows_before_cancel");
    QTest::addColumn<bool>("finished");
    QTest::newRow("before the next record") << 1 << false;
    QTest::newRow("before the next hive") << 2 << false;
    QTest::newRow("in the second hive") << 3 << false;
    QTest::newRow("nothing left") << 4 << true;
}

void test_searches::cancel_keeps_what_was_written() {
    QFETCH(int, rows_before_cancel);
    test_case_folder folder;
    const QByteArray hive = search_hive({}, {QStringLiteral(".com/search?q=a&"), QStringLiteral(".com/search?q=b&")});
    folder.write_file(anna, hive);
    folder.write_file(bernd, hive);
    const search_step descriptor{
        {"cancelled", "started", "opening failed", "ended", {"", false, "", ""}, insert_statement},
        "SOFTWARE\\Microsoft\\Windows\\CurrentVersion\\Explorer\\FileExts",
        [](const registry::my_data_inst_apps& record) { return record.key_name.toLatin1(); },
        search_text_in_name,
        search_time_in_name};
    const QString root = folder.root();
    const QString database = folder.database_path();
    const QString none;
    bool cancelled = false;
    int rows = 0;
    const step_context context{root, none,      database,
                               none, cancelled, [&] { cancelled = ++rows == rows_before_cancel; }};
    std::unique_ptr<search_from_com> walker;
    run_search_step(context, descriptor, walker, {root + anna, root + bernd});
    QVERIFY(walker == nullptr);
    QCOMPARE(folder.dump(QStringLiteral("searches")).size(), rows_before_cancel);
    QTEST(folder.take_log().last().contains(QStringLiteral("ended")), "finished");
}

void test_searches::epoch_of_filetime_text_data() {
    QTest::addColumn<QString>("text");
    QTest::addColumn<qint64>("seconds");
    QTest::newRow("a time") << QStringLiteral(" 132336859456780000 ") << qint64(1589212345);
    QTest::newRow("before 1970") << QStringLiteral("1") << qint64(-11644473599);
    QTest::newRow("zero") << QStringLiteral("0") << qint64(0);
    QTest::newRow("negative") << QStringLiteral("-5") << qint64(0);
    QTest::newRow("no number") << QStringLiteral("12x") << qint64(0);
    QTest::newRow("blank") << QStringLiteral(" ") << qint64(0);
}

void test_searches::epoch_of_filetime_text() {
    QFETCH(QString, text);
    QTEST(cortana_winos().give_epoch_from_string(text), "seconds");
}

QTEST_MAIN(test_searches)
#include "test_searches.moc"
