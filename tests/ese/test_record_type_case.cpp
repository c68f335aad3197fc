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
         ese_code_page code_page = ese_code_page::none, int forced_type = -1) {
    QTest::newRow(name) << type << code_page << value << text << forced_type;
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
    add("NULL large binary", ese_type::large_binary, nullptr, "");
}

void add_binary() {
    const auto counted = [](const char* name, ese_type type, size_t size, place where) {
        const std::string bytes = counted_text(size);
        add(name, type, ese_value::bytes(bytes).put(where), QByteArray::fromStdString(bytes).toHex());
    };
    add("binary with zero bytes", ese_type::binary, raw(QByteArray("\0\1", 2)), "0001");
    counted("binary at the buffer's size", ese_type::binary, 1024, place::record);
    counted("binary beyond the buffer's size", ese_type::binary, 1025, place::record);
    counted("large binary in the record", ese_type::large_binary, 30000, place::record);
    counted("large binary of many segments", ese_type::large_binary, 102401, place::long_value);
    add("large binary of one segment", ese_type::large_binary, long_value(raw(QByteArray("\xFF\0\xFE", 3))), "ff00fe");
}

void add_texts() {
    constexpr ese_code_page utf_16 = ese_code_page::utf_16;
    constexpr ese_code_page windows_1252 = ese_code_page::windows_1252;
    const std::string with_zero("ab\0cd", 5);
    const auto counted = [](const char* name, ese_type type, size_t size, place where, ese_code_page code_page) {
        const std::string text = counted_text(size);
        add(name, type, ese_value(text).put(where), QByteArray::fromStdString(text), code_page);
    };
    add("1252", ese_type::text, "Café €", "Café €", windows_1252);
    add("code page 0 is 1252", ese_type::text, "Café", "Café");
    add("ASCII", ese_type::text, "plain", "plain", ese_code_page::ascii);
    add("UTF-16", ese_type::text, "日本 🦊", "日本 🦊", utf_16);
    add("empty", ese_type::text, "", "", utf_16);
    add("embedded zero", ese_type::text, with_zero, "ab", utf_16);
    add("embedded zero in 1252", ese_type::text, with_zero, "ab", windows_1252);
    // libesedb counts the end character, so these fill the buffer exactly and miss it by one.
    counted("1023 characters", ese_type::text, 1023, place::record, utf_16);
    counted("1024 characters", ese_type::text, 1024, place::record, utf_16);
    counted("large text in the record", ese_type::large_text, 14000, place::record, utf_16);
    add("large text, embedded zero", ese_type::large_text, in_record(with_zero), "ab", utf_16);
    add("long text of one segment", ese_type::large_text, long_value("Grüße 🥨"), "Grüße 🥨", utf_16);
    add("long text, embedded zero", ese_type::large_text, long_value(with_zero), "ab", utf_16);
    counted("long text of many segments", ese_type::large_text, 300000, place::long_value, utf_16);
    counted("long 1252 text of many segments", ese_type::large_text, 300000, place::long_value, windows_1252);
    // Damaged texts: nothing is invented.
    const ese_value low = in_record(raw(QByteArray("a\0\x00\xDC", 4)));
    const ese_value high = in_record(raw(QByteArray("a\0\x00\xD8", 4)));
    add("a low surrogate alone", ese_type::text, low, "", utf_16);
    add("a low surrogate alone, large", ese_type::large_text, low, "", utf_16);
    add("a high surrogate at the end", ese_type::text, high, "", utf_16);
    add("a high surrogate at the end, large", ese_type::large_text, high, "", utf_16);
    add("odd length", ese_type::text, in_record(raw("abc")), "abc", utf_16);
    add("odd length, large", ese_type::large_text, in_record(raw("abc")), "abc", utf_16);
}

void add_other_type_numbers() {
    constexpr ese_code_page utf_16 = ese_code_page::utf_16;
    // By the type's number only: libesedb reads no record of a table with such a column.
    add("super large in the record", ese_type::large_text, in_record("Grüße 🥨"), "Grüße 🥨", utf_16, 13);
    add("super large long value", ese_type::large_text, long_value("Grüße 🥨"), "Grüße 🥨", utf_16, 13);
    // The raw bytes until the first zero byte.
    add("type 0", ese_type::text, "abc", "a", utf_16, 0);
    add("type 18", ese_type::text, "abc", "abc", ese_code_page::ascii, 18);
    add("type 99", ese_type::text, "abc", "a", utf_16, 99);
}

} // namespace

class test_record_type_case : public QObject {
    Q_OBJECT

    QTemporaryDir folder;

private Q_SLOTS:
    void each_type_gives_its_text_data() {
        QTest::addColumn<ese_type>("type");
        QTest::addColumn<ese_code_page>("code_page");
        QTest::addColumn<ese_value>("value");
        QTest::addColumn<QByteArray>("text");
        QTest::addColumn<int>("forced_type");
        add_numbers();
        add_nulls();
        add_binary();
        add_texts();
        add_other_type_numbers();
    }

    void each_type_gives_its_text() {
        QFETCH(ese_type, type);
        QFETCH(ese_code_page, code_page);
        QFETCH(ese_value, value);
        QFETCH(int, forced_type);
        const QString path = folder.filePath(QStringLiteral("value.dat"));
        // The second column makes the writer store a fixed one although it is NULL.
        const test_table table{
            "T", {test_column("Value", type, code_page), test_column("After", ese_type::unsigned_8)}, {{value, 1}}};
        write_ese(path, {table}, 32768);
        every_value_reader reader;
        reader.forced_type = forced_type;
        reader.start_parsing(path, QStringLiteral("T"));
        QTEST(reader.records.value(0).value(QStringLiteral("Value"), "(no value)"), "text");
    }
};

QTEST_APPLESS_MAIN(test_record_type_case)
#include "test_record_type_case.moc"
