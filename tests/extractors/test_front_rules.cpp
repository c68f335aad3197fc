// SPDX-License-Identifier: MIT
// The front's members for single values: each must reach its own rule. Inputs are such that the rules of one signature
// give different texts.
#include "plugin/cortana_winos.h"

#include <QtTest>

namespace {

using front_call = QString (*)(cortana_winos&);

const QByteArray search = QByteArrayLiteral("search?q=a%20b&sbts=1589212345678.lnk");
// Between the bounds a no-break space in Latin-1, which is no UTF-8.
const QByteArray quoted = QByteArrayLiteral("\"no\"-\"\xA0\"-\"no\"");
constexpr qint64 start = 4;
constexpr qint64 end = 9;

struct front_case {
    const char* name;
    front_call call;
    const char* text;
};
const front_case cases[] = {
    {"search text in value", [](cortana_winos& f) { return f.get_search_text(search); }, "a%20b"},
    {"search time in value", [](cortana_winos& f) { return f.get_search_time(search); }, "1589212345"},
    {"search text in name", [](cortana_winos& f) { return f.get_searched_text_for_com(search); }, "a b"},
    {"search time in name", [](cortana_winos& f) { return f.get_time(search); }, "1589212345678.lnk"},
    {"original name", [](cortana_winos& f) { return f.extract_original_name(quoted, start, end); }, "\uFFFD"},
    {"quoted value", [](cortana_winos& f) { return f.extract_data_str(start, end, quoted); }, "\u00A0"},
    {"date", [](cortana_winos& f) { return f.extract_date(start, end, quoted); }, "0"},
    {"graph time", [](cortana_winos& f) { return f.graphed_timestamp_conversion(QStringLiteral(" ")); }, "0"},
    {"time of a reminder",
     [](cortana_winos& f) {
         return QString::number(f.timestamp_format_converter(QStringLiteral("2019-05-01T10:00:00Z")));
     },
     "1556704800"},
};

} // namespace

Q_DECLARE_METATYPE(front_call)

class test_front_rules : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void own_rule_data();
    void own_rule();
};

void test_front_rules::own_rule_data() {
    QTest::addColumn<front_call>("call");
    QTest::addColumn<QString>("text");
    for (const front_case& row : cases) {
        QTest::newRow(row.name) << row.call << QString::fromUtf8(row.text);
    }
}

void test_front_rules::own_rule() {
    QFETCH(front_call, call);
    cortana_winos front;
    QTEST(call(front), "text");
}

QTEST_MAIN(test_front_rules)
#include "test_front_rules.moc"
