// SPDX-License-Identifier: MIT
// The front's members for single values: each must reach its own rule. Inputs are such that the rules of one signature
// give different texts.
#include "plugin/cortana_winos.h"
#include "tests/support/test_text.h"

#include <QtTest>

namespace {

using front_call = QString (*)(cortana_winos&);

const QByteArray search = QByteArrayLiteral("search?q=a%20b&sbts=1589212345678.lnk");
// Between the bounds a no-break space in Latin-1, which is no UTF-8.
const QByteArray quoted = QByteArrayLiteral("\"no\"-\"\xA0\"-\"no\"");
constexpr qint64 start = 4;
constexpr qint64 end = 9;

} // namespace

Q_DECLARE_METATYPE(front_call)

class test_front_rules : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void own_rule_data() {
        QTest::addColumn<front_call>("call");
        QTest::addColumn<QString>("text");
        const auto row = [](const char* name, const char* text, front_call call) {
            QTest::newRow(name) << call << QString::fromUtf8(text);
        };
        row("search text in value", "a%20b", [](cortana_winos& f) { return f.get_search_text(search); });
        row("search time in value", "1589212345", [](cortana_winos& f) { return f.get_search_time(search); });
        row("search text in name", "a b", [](cortana_winos& f) { return f.get_searched_text_for_com(search); });
        row("search time in name", "1589212345678.lnk", [](cortana_winos& f) { return f.get_time(search); });
        row("original name", "\uFFFD", [](cortana_winos& f) { return f.extract_original_name(quoted, start, end); });
        row("quoted value", "\u00A0", [](cortana_winos& f) { return f.extract_data_str(start, end, quoted); });
        row("date", "0", [](cortana_winos& f) { return f.extract_date(start, end, quoted); });
        row("graph time", "0", [](cortana_winos& f) { return f.graphed_timestamp_conversion(" "_q); });
        row("time of a registry key", "1589212345",
            [](cortana_winos& f) { return QString::number(f.give_epoch_from_string("132336859456780000"_q)); });
        row("time of a reminder", "1556704800",
            [](cortana_winos& f) { return QString::number(f.timestamp_format_converter("2019-05-01T10:00:00Z"_q)); });
    }

    void own_rule() {
        QFETCH(front_call, call);
        cortana_winos front;
        QTEST(call(front), "text");
    }
};

QTEST_MAIN(test_front_rules)
#include "test_front_rules.moc"
