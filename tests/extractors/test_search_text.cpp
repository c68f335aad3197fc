// SPDX-License-Identifier: MIT
// Bytes in, text out: what the four cutters find, and whether nothing found is null or empty.
#include "extractors/search_text.h"

#include <QtTest>

namespace {

using cutter = QString (*)(const QByteArray&);

const char* const none = nullptr; // a null text is expected

struct cut {
    const char* name;
    QByteArray bytes;
    const char* text;
};

QByteArray utf16(const char* ascii) {
    QByteArray bytes;
    for (; *ascii != '\0'; ++ascii) {
        bytes.append(*ascii).append('\0');
    }
    return bytes;
}

void add_rows(cutter cut_with, const char* cutter_name, const QVector<cut>& rows) {
    for (const cut& row : rows) {
        QTest::addRow("%s: %s", cutter_name, row.name) << cut_with << row.bytes << QString::fromUtf8(row.text);
    }
}

} // namespace

Q_DECLARE_METATYPE(cutter)

class test_search_text : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void cuts_data() {
        QTest::addColumn<cutter>("cut_with");
        QTest::addColumn<QByteArray>("bytes");
        QTest::addColumn<QString>("text");
        add_rows(search_text_in_value, "text in value",
                 {
                     {"UTF-16", utf16("search?q=new york&form=x"), "new york"},
                     {"no mark", "weather&form=x", "weather"},
                     {"mark not in front stays", "?search?q=a&", "?search?q=a"},
                     {"every mark goes", "search?q=a search?q=b&", "a b"},
                     {"nothing between", "search?q=&form=x", ""},
                     {"zeros only before the end", QByteArray("\0\0&", 3), ""},
                     {"first end counts", "search?q=a&b&c", "a"},
                     {"no percent decoding", "search?q=a%20b+c&", "a%20b+c"},
                     {"UTF-8", "search?q=caf\xc3\xa9&", "caf\xc3\xa9"},
                     {"not UTF-8", "a\xff&", "a\xef\xbf\xbd"},
                     {"no end", "search?q=weather", none},
                     {"end in front", "&search?q=weather", none},
                     {"no bytes", "", ""},
                     {"blank", " \t\r\n", ""},
                     {"one zero is not blank", QByteArray(1, '\0'), none},
                 });
        add_rows(search_time_in_value, "time in value",
                 {
                     {"truncated, not rounded", "&sbts=1589212345999.", "1589212345"},
                     {"mark in front", "sbts=1589212345678.", "1589212345"},
                     {"no end", "&sbts=1589212345678", none},
                     {"end before the mark only", "a.b&sbts=1589212345678", none},
                     {"no mark", "search?q=weather&.", none},
                     {"UTF-16 has no mark", utf16("sbts=1589212345678."), none},
                     {"nothing between", "sbts=.", ""},
                     {"no number", "sbts=yesterday.", "yesterday"},
                     {"13 letters lose three", "sbts=abcdefghijklm.", "abcdefghij"},
                     {"13 characters of more bytes", "sbts=\xc3\xa9ghijklmnopqr.", "\xc3\xa9ghijklmno"},
                     {"up to a zero", QByteArray("sbts=12\0x4.", 11), "12"},
                     {"first mark counts", "sbts=1.sbts=2.", "1"},
                     {"no bytes", "", ""},
                     {"blank", " \v\f", ""},
                 });
        add_rows(search_text_in_name, "text in name",
                 {
                     {"percent-encoded UTF-8", ".com/search?q=caf%C3%A9&form=x&y", "caf\xc3\xa9"},
                     {"broken escapes stay", ".com/search?q=100%&", "100%"},
                     {"plus stays", ".com/search?q=a+b&", "a+b"},
                     {"up to an encoded zero", ".com/search?q=a%00b&", "a"},
                     {"mark in front", "search?q=a&", "a"},
                     {"end before the mark", ".com/a&search?q=b&", "b"},
                     {"nothing between", ".com/search?q=&", ""},
                     {"no end", ".com/search?q=weather", none},
                     {"no mark", ".com/weather&", none},
                     {"no bytes", "", ""},
                     {"blank", "  ", ""},
                 });
        add_rows(search_time_in_name, "time in name",
                 {
                     {"milliseconds", ".com&sbts=1589212345678", "1589212345"},
                     {"14 digits", ".com&sbts=15892123456789", "15892123456789"},
                     {"all to the end", ".com&sbts=1589212345678.x&y=1", "1589212345678.x&y=1"},
                     {"mark at the end", ".com&sbts=", ""},
                     {"up to a zero", QByteArray(".com&sbts=12\0x4", 15), "12"},
                     {"mark in front", "sbts=1589212345678", none},
                     {"no mark", ".com/search?q=weather&", none},
                     {"no bytes", "", ""},
                     {"blank", "\n", ""},
                 });
    }

    void cuts() {
        QFETCH(cutter, cut_with);
        QFETCH(QByteArray, bytes);
        QFETCH(QString, text);
        const QString found = cut_with(bytes);
        QCOMPARE(found, text);
        QCOMPARE(found.isNull(), text.isNull());
    }
};

QTEST_APPLESS_MAIN(test_search_text)
#include "test_search_text.moc"
