// SPDX-License-Identifier: MIT
// The searches step over written hives: rows with their stored types.
#include "tests/registry/hive_fixture.h"
#include "tests/support/test_support.h"

#include <QtTest>

namespace {

const QString explorer = "SOFTWARE\\Microsoft\\Windows\\CurrentVersion\\Explorer\\"_q;
// A hive with these data in values of a ".&input=" key and these keys below the file extensions.
QByteArray search_hive(const QVector<QByteArray>& recent_values, const QStringList& extensions = {}) {
    hive_writer hive;
    QVector<hive_value> values;
    for (const QByteArray& data : recent_values) {
        values.append(value_of(QString::number(values.size()), data));
    }
    if (!values.isEmpty()) {
        hive.set_values(hive.add_path(explorer + "RecentDocs\\.&input=x"_q), values);
    }
    for (const QString& name : extensions) {
        hive.add_path(explorer + "FileExts\\"_q + name);
    }
    return hive.bytes();
}

QString row(const QByteArray& keyword, const char* time) {
    return "search_keyword=%1 | search_timestamp=%2"_q.arg(QString::fromUtf8(keyword), QLatin1String(time));
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
                                                "search?q=&sbts=7.", utf16_text("search?q=odd&"_q) + 'x'})
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
            << search_hive({"search?q=b&"}, {".com/search?q=new%20york&sbts=1589212345678"_q, ".com/search?q=weather"_q,
                                             ".company"_q, ".com/search?q=caf\u00e9&"_q, ".com&sbts=15892123456789"_q})
            << QStringList{row("text:b", "null:"), row("null:", "integer:15892123456789"),
                           row("text:caf\u00c3\u00a9", "null:"), row("text:new york", "integer:1589212345")};
    }

    void rows() {
        QFETCH(QByteArray, hive);
        const test_case_folder folder;
        folder.write_file("Users/anna/NTUSER.DAT"_q, hive);
        const auto front = folder.make_front();
        front->find_source_file();
        front->extract_searches();
        QTEST(folder.dump("searches"_q, {"search_keyword"_q, "search_timestamp"_q}), "rows");
    }
};

QTEST_MAIN(test_searches)
#include "test_searches.moc"
