// SPDX-License-Identifier: MIT
// The searches step over written hives: rows with their stored types, log lines, broken hives, cancel.
#include "extractors/search_procedure.h"
#include "extractors/search_text.h"
#include "registry/search_from_com.h"
#include "tests/registry/hive_fixture.h"
#include "tests/support/test_support.h"

#include <QtTest>

namespace {

const QString explorer = QStringLiteral("SOFTWARE\\Microsoft\\Windows\\CurrentVersion\\Explorer\\");
const QString step = QStringLiteral("cortana_winos::extract_searches:-- ");
constexpr char insert_statement[] =
    "INSERT INTO searches(bookmark,system_user,domain_user,search_keyword,search_timestamp,source_file, "
    "os_scheme_display,source_count_name) VALUES (0,?,?,?,?,?,?,?)";
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

QString row(const QByteArray& keyword, const char* time) {
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
    void rows_data() {
        QTest::addColumn<QByteArray>("hive");
        QTest::addColumn<QStringList>("rows");
        QTest::newRow("values") << search_hive({"search?q=weather&sbts=1589212345678.lnk", "search?q=a&sbts=never.",
                                                "search?q=a%20b&", "sbts=1589212345.", "&sbts=.", "&", "", " ", "x",
                                                "search?q=&sbts=7.", utf16_text(QStringLiteral("search?q=odd&")) + 'x'})
                                << QStringList{row("text:weather", "integer:1589212345"),
                                               row("text:a", "text:never"),
                                               row("text:a%20b", "null:"),
                                               row("null:", "integer:1589212345"),
                                               row("text:", "integer:7"),
                                               row("text:odd", "null:")};
        const QByteArray large(1000000, 'x');
        QTest::newRow("1 MB of text") << search_hive({"search?q=" + large + "&sbts=5."})
                                      << QStringList(row("text:" + large, "integer:5"));
        QTest::newRow("values before names")
            << search_hive({"search?q=b&"},
                           {QStringLiteral(".com/search?q=new%20york&sbts=1589212345678"),
                            QStringLiteral(".com/search?q=weather"), QStringLiteral(".company"),
                            QStringLiteral(".com/search?q=caf\u00e9&"), QStringLiteral(".com&sbts=15892123456789")})
            << QStringList{row("text:b", "null:"), row("null:", "integer:15892123456789"),
                           row("text:caf\u00c3\u00a9", "null:"), row("text:new york", "integer:1589212345")};
    }

    void rows() {
        QFETCH(QByteArray, hive);
        const test_case_folder folder;
        folder.write_file(anna, hive);
        QTEST(run(folder), "rows");
    }

    void log_of_failures() {
        test_case_folder folder;
        folder.write_file(anna,
                          search_hive({"search?q=a&", "search?q=refused&", "search?q=b&"},
                                      {QStringLiteral(".com/search?q=refused&"), QStringLiteral(".com/search?q=z&")}));
        folder.execute(
            QStringLiteral("create trigger refuse before insert on searches when new.search_keyword = 'refused' "
                           "begin select raise(abort, 'not this one'); end"));
        QCOMPARE(run(folder), (QStringList{row("text:a", "null:"), row("text:b", "null:"), row("text:z", "null:")}));
        QStringList log = folder.take_log().filter(QRegularExpression(QStringLiteral("FAILED|not this|INSERT")));

        const auto front = folder.make_front();
        front->winos_set_destination_location(folder.result_dir(), folder.result_dir(), folder.result_dir());
        front->extract_searches();
        log += folder.take_log();
        QVERIFY(matches_golden(log, QStringLiteral(GOLDEN_DIR "/searches_failures_log.txt")));
    }

    void goes_on_with_the_next_user_data() {
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

    void goes_on_with_the_next_user() {
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

    void cancelled_before_it_starts() {
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
    void cancel_keeps_what_was_written_data() {
        QTest::addColumn<int>("rows_before_cancel");
        QTest::addColumn<bool>("finished");
        QTest::newRow("before the next record") << 1 << false;
        QTest::newRow("before the next hive") << 2 << false;
        QTest::newRow("in the second hive") << 3 << false;
        QTest::newRow("nothing left") << 4 << true;
    }

    void cancel_keeps_what_was_written() {
        QFETCH(int, rows_before_cancel);
        test_case_folder folder;
        const QByteArray hive =
            search_hive({}, {QStringLiteral(".com/search?q=a&"), QStringLiteral(".com/search?q=b&")});
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
};

QTEST_MAIN(test_searches)
#include "test_searches.moc"
