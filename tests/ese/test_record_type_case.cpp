// SPDX-License-Identifier: MIT
// Values of every column type, written to real files and read back as text.
#include "tests/ese/ese_files.h"

#include <QtTest>

#include <limits>

Q_DECLARE_METATYPE(ese_type)
Q_DECLARE_METATYPE(ese_code_page)
Q_DECLARE_METATYPE(ese_value)

namespace {

using place = ese_value::place;

ese_value raw(const QByteArray& bytes) {
    return ese_value::bytes(bytes.toStdString());
}
ese_value in_record(ese_value value) {
    return value.put(place::record);
}
ese_value long_value(ese_value value) {
    return value.put(place::long_value);
}

// Text and bytes whose parts all differ, so that a lost or swapped part shows.
std::string counted_text(size_t size) {
    std::string text;
    for (int number = 0; text.size() < size; ++number) {
        text += std::to_string(number) + ' ';
    }
    text.resize(size);
    return text;
}

void add(const char* name, ese_type type, const ese_value& value, const QByteArray& text,
         ese_code_page code_page = ese_code_page::none) {
    QTest::newRow(name) << type << code_page << value << text;
}

void add_numbers() {
    add("boolean true", ese_type::boolean, 1, "true");
    add("boolean false", ese_type::boolean, 0, "false");
    add("boolean of another byte", ese_type::boolean, raw("\x02"), "true");
    add("unsigned 8 bit", ese_type::unsigned_8, 255, "255");
    add("signed 16 bit is zero-extended", ese_type::signed_16, -2, "65534");
    add("unsigned 16 bit", ese_type::unsigned_16, 65535, "65535");
    add("signed 32 bit is zero-extended", ese_type::signed_32, -2, "4294967294");
    add("unsigned 32 bit", ese_type::unsigned_32, 4000000000U, "4000000000");
    add("signed 64 bit", ese_type::signed_64, std::numeric_limits<qint64>::min(), "-9223372036854775808");
    add("date and time is a file time", ese_type::date_time, 132000000000000000, "132000000000000000");
    add("float 0.1", ese_type::float_32, 0.1, "0.1");
    add("large float", ese_type::float_32, -1e20, "-1e+20");
    add("double in six digits", ese_type::float_64, 123456789.0, "1.23457e+08");
    add("coordinate", ese_type::float_64, -122.3, "-122.3");
    add("currency is cut at a zero byte", ese_type::currency, 0x616200636465, "656463");
    add("GUID", ese_type::guid, raw("ABCDEFGHIJKLMNOP"), "4142434445464748494a4b4c4d4e4f50");
    add("GUID with a zero byte is cut", ese_type::guid, raw(QByteArray("AB\0DEFGHIJKLMNOP", 16)), "4142");
    add("GUID that starts with a zero byte", ese_type::guid, raw(QByteArray("\0BCDEFGHIJKLMNOP", 16)), "");
}

// A fixed column before one with a value: its bytes are there, all 0x2A, and only the NULL bits tell.
void add_nulls() {
    add("NULL boolean", ese_type::boolean, nullptr, "true"); // 0x2A in 1 to 4 bytes may be a value
    add("NULL signed 32 bit", ese_type::signed_32, nullptr, "707406378");
    add("NULL float", ese_type::float_32, nullptr, "1.51137e-13");
    add("NULL signed 64 bit", ese_type::signed_64, nullptr, "0");
    add("NULL date and time", ese_type::date_time, nullptr, "0");
    add("NULL double", ese_type::float_64, nullptr, "0");
    add("NULL currency", ese_type::currency, nullptr, "");
    add("one less than the NULL filler", ese_type::signed_64, 0x2A2A2A2A2A2A2A29, "3038287259199220265");
    add("GUID of the NULL filler", ese_type::guid, nullptr, QByteArray(16, '\x2A').toHex());
    add("NULL binary", ese_type::binary, nullptr, "");
    add("NULL text", ese_type::text, nullptr, "");
    add("NULL large binary", ese_type::large_binary, nullptr, "");
    add("NULL large text", ese_type::large_text, nullptr, "");
}

void add_binary() {
    const std::string exact = counted_text(1024);
    const std::string beyond = counted_text(1025);
    const std::string large = counted_text(30000);
    const std::string long_one = counted_text(102401);
    add("binary with zero bytes", ese_type::binary, raw(QByteArray("\0\1", 2)), "0001");
    add("binary at the buffer's size", ese_type::binary, ese_value::bytes(exact),
        QByteArray::fromStdString(exact).toHex());
    add("binary beyond the buffer's size", ese_type::binary, ese_value::bytes(beyond),
        QByteArray::fromStdString(beyond).toHex());
    add("large binary in the record", ese_type::large_binary, in_record(ese_value::bytes(large)),
        QByteArray::fromStdString(large).toHex());
    add("large binary of one segment", ese_type::large_binary, long_value(raw(QByteArray("\xFF\0\xFE", 3))), "ff00fe");
    add("large binary of many segments", ese_type::large_binary, long_value(ese_value::bytes(long_one)),
        QByteArray::fromStdString(long_one).toHex());
}

void add_texts() {
    constexpr ese_code_page utf_16 = ese_code_page::utf_16;
    add("1252", ese_type::text, "Café €", "Café €", ese_code_page::windows_1252);
    add("code page 0 is 1252", ese_type::text, "Café", "Café");
    add("ASCII", ese_type::text, "plain", "plain", ese_code_page::ascii);
    add("UTF-16", ese_type::text, "日本 🦊", "日本 🦊", utf_16);
    add("empty", ese_type::text, "", "", utf_16);
    add("embedded zero", ese_type::text, std::string("ab\0cd", 5), "ab", utf_16);
    add("embedded zero in 1252", ese_type::text, std::string("ab\0cd", 5), "ab", ese_code_page::windows_1252);
    // libesedb counts the end character, so these fill the buffer exactly and miss it by one.
    for (const size_t length : {size_t{1023}, size_t{1024}, size_t{2000}}) {
        const std::string text = counted_text(length);
        QTest::addRow("%zu characters", length)
            << ese_type::text << utf_16 << ese_value(text) << QByteArray::fromStdString(text);
    }
    const std::string large = counted_text(14000);
    add("large text in the record", ese_type::large_text, in_record(large), QByteArray::fromStdString(large), utf_16);
    add("large text, embedded zero", ese_type::large_text, in_record(std::string("ab\0cd", 5)), "ab", utf_16);
}

void add_long_texts() {
    constexpr ese_code_page utf_16 = ese_code_page::utf_16;
    add("long text of one segment", ese_type::large_text, long_value("Grüße 🥨"), "Grüße 🥨", utf_16);
    add("long text, embedded zero", ese_type::large_text, long_value(std::string("ab\0cd", 5)), "ab", utf_16);
    for (const size_t length : {size_t{102399}, size_t{102400}, size_t{300000}}) {
        const std::string text = counted_text(length);
        QTest::addRow("long text of %zu characters", length)
            << ese_type::large_text << utf_16 << long_value(text) << QByteArray::fromStdString(text);
        QTest::addRow("long 1252 text of %zu characters", length)
            << ese_type::large_text << ese_code_page::windows_1252 << long_value(text)
            << QByteArray::fromStdString(text);
    }
}

} // namespace

class test_record_type_case : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void each_type_gives_its_text_data();
    void each_type_gives_its_text();
    void damaged_text_invents_nothing_data();
    void damaged_text_invents_nothing();
    void super_large_values_are_texts_data();
    void super_large_values_are_texts();
    void other_type_numbers_give_the_raw_bytes();

private:
    QByteArray read_back(ese_type type, ese_code_page code_page, const ese_value& value, int forced_type = -1);

    QTemporaryDir folder;
};

QByteArray test_record_type_case::read_back(ese_type type, ese_code_page code_page, const ese_value& value,
                                            int forced_type) {
    const QString path = folder.filePath(QStringLiteral("value.dat"));
    const bool fixed = type != ese_type::binary && type != ese_type::text && type != ese_type::large_binary &&
                       type != ese_type::large_text;
    test_table table{"T", {test_column("Value", type, code_page)}, {{value}}};
    if (fixed) { // makes the writer store the fixed column although it is NULL
        table.columns.push_back(test_column("After", ese_type::unsigned_8));
        table.rows[0].emplace_back(1);
    }
    write_ese(path, {table}, 32768);
    every_value_reader reader;
    reader.forced_type = forced_type;
    reader.start_parsing(path, QStringLiteral("T"));
    return reader.records.value(0).value(QStringLiteral("Value"), "(no value)");
}

void test_record_type_case::each_type_gives_its_text_data() {
    QTest::addColumn<ese_type>("type");
    QTest::addColumn<ese_code_page>("code_page");
    QTest::addColumn<ese_value>("value");
    QTest::addColumn<QByteArray>("text");
    add_numbers();
    add_nulls();
    add_binary();
    add_texts();
    add_long_texts();
}

void test_record_type_case::each_type_gives_its_text() {
    QFETCH(ese_type, type);
    QFETCH(ese_code_page, code_page);
    QFETCH(ese_value, value);
    QFETCH(QByteArray, text);
    QCOMPARE(read_back(type, code_page, value), text);
}

void test_record_type_case::damaged_text_invents_nothing_data() {
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<QByteArray>("text");
    QTest::newRow("a low surrogate alone") << QByteArray("a\0\x00\xDC", 4) << QByteArray();
    QTest::newRow("a high surrogate at the end") << QByteArray("a\0\x00\xD8", 4) << QByteArray();
    QTest::newRow("odd length") << QByteArray("abc") << QByteArray("abc");
}

void test_record_type_case::damaged_text_invents_nothing() {
    QFETCH(QByteArray, bytes);
    QFETCH(QByteArray, text);
    QCOMPARE(read_back(ese_type::text, ese_code_page::utf_16, raw(bytes)), text);
    QCOMPARE(read_back(ese_type::large_text, ese_code_page::utf_16, in_record(raw(bytes))), text);
}

void test_record_type_case::super_large_values_are_texts_data() {
    QTest::addColumn<ese_value>("value");
    const ese_value text("Grüße 🥨");
    QTest::newRow("in the record") << in_record(text);
    QTest::newRow("long value") << long_value(text);
}

// By the type's number only: libesedb reads no record of a table with such a column.
void test_record_type_case::super_large_values_are_texts() {
    QFETCH(ese_value, value);
    constexpr int super_large = 13;
    QCOMPARE(read_back(ese_type::large_text, ese_code_page::utf_16, value, super_large), QByteArray("Grüße 🥨"));
}

void test_record_type_case::other_type_numbers_give_the_raw_bytes() {
    for (const int type : {0, 18, 99}) {
        QCOMPARE(read_back(ese_type::text, ese_code_page::utf_16, "abc", type), QByteArray("a"));
        QCOMPARE(read_back(ese_type::text, ese_code_page::ascii, "abc", type), QByteArray("abc"));
    }
}

QTEST_APPLESS_MAIN(test_record_type_case)
#include "test_record_type_case.moc"
