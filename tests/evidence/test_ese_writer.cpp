// SPDX-License-Identifier: MIT
// Values of every kind through the ESE writer and back through libesedb.
#include "tests/evidence/ese_example.h"
#include "tests/evidence/ese_file_view.h"

#include <QFile>
#include <QtTest>

#include <limits>

Q_DECLARE_METATYPE(ese_value)
Q_DECLARE_METATYPE(ese_type)
Q_DECLARE_METATYPE(ese_code_page)

class test_ese_writer : public QObject {
    Q_OBJECT

    example_file example;

private Q_SLOTS:
    void value_of_each_type_data();
    void value_of_each_type();
    void text_in_each_code_page_data();
    void text_in_each_code_page();
    void null_keeps_other_values_in_place();
    void catalog_has_record_offsets();
    void empty_values_leave_their_neighbours_alone();
    void full_record_moves_its_largest_values_out();
    void super_large_column_spoils_only_its_own_table();
    void bad_requests_data();
    void bad_requests();
    void file_without_close_does_not_open();
};

void test_ese_writer::value_of_each_type_data() {
    QTest::addColumn<ese_type>("type");
    QTest::addColumn<ese_value>("value");
    QTest::addColumn<QByteArray>("stored");
    const auto add = [](const char* name, ese_type type, const ese_value& value, const char* stored) {
        QTest::newRow(name) << type << value << hex(stored);
    };
    add("boolean true", ese_type::boolean, true, "ff");
    add("boolean false", ese_type::boolean, false, "00");
    add("boolean odd byte", ese_type::boolean, ese_value::bytes("\x02"), "02");
    add("u8", ese_type::unsigned_8, 200, "c8");
    add("i16", ese_type::signed_16, -2, "feff");
    add("u16", ese_type::unsigned_16, 65535, "ffff");
    add("i32", ese_type::signed_32, -70000, "90eefeff");
    add("u32", ese_type::unsigned_32, 4294967295U, "ffffffff");
    add("currency", ese_type::currency, -1, "ffffffffffffffff");
    add("i64", ese_type::signed_64, std::numeric_limits<std::int64_t>::min(), "0000000000000080");
    add("float", ese_type::float_32, 0.1F, "cdcccc3d");
    add("float of an integer", ese_type::float_32, -2, "000000c0");
    add("double", ese_type::float_64, 0.1, "9a9999999999b93f");
    add("date and time", ese_type::date_time, 132000000000000000, "00005af64cf5d401");
    add("OLE date", ese_type::date_time, 0.5, "000000000000e03f");
    add("GUID", ese_type::guid, ese_value::bytes("0123456789abcdef"), "30313233343536373839616263646566");
    add("binary", ese_type::binary, ese_value::bytes(std::string("\0a\0\xFF", 4)), "006100ff");
    add("text", ese_type::text, "abc", "616263");
    add("large binary", ese_type::large_binary, ese_value::bytes(std::string("\0\0", 2)), "0000");
    add("large text", ese_type::large_text, "x\xC3\xA4", "78e4");
}

// In every place that the type may have, beside other columns, on every page size.
void test_ese_writer::value_of_each_type() {
    QFETCH(ese_type, type);
    QFETCH(ese_value, value);
    QFETCH(QByteArray, stored);
    const bool large = type == ese_type::large_binary || type == ese_type::large_text;
    const bool sized = type != ese_type::text && type != ese_type::binary && !large;
    const std::uint32_t fixed = large ? 300 : 2;
    const std::uint32_t variable = large || sized ? 350 : 130;
    const std::vector<ese_column> columns = {
        {1, "before", ese_type::signed_32, {}, 0},
        {fixed, "fixed", type, {}, static_cast<std::uint32_t>(stored.size())},
        {fixed + 1, "after", large ? type : ese_type::unsigned_8, {}, 0},
        {variable, "variable", type, {}, 0},
        {400, "tagged", type, {}, 0},
        {401, "last", ese_type::text, {}, 0},
    };
    for (const auto page_size : page_sizes) {
        example.write(page_size, columns, {{7, value, ese_value::bytes("Z"), value, value, "end"}});
        const file_view file(example.path());
        const auto row = file.table("Table").row(0);
        QVERIFY(row.is_valid());
        QCOMPARE(row.bytes(0), hex("07000000"));
        QCOMPARE(row.bytes(1), stored);
        QCOMPARE(row.bytes(2), QByteArray("Z"));
        QCOMPARE(row.bytes(3), stored);
        QCOMPARE(row.bytes(4), stored);
        QCOMPARE(row.text(5), QStringLiteral("end"));
    }
}

void test_ese_writer::text_in_each_code_page_data() {
    QTest::addColumn<ese_code_page>("code_page");
    QTest::addColumn<QString>("text");
    QTest::addColumn<QByteArray>("stored");
    QTest::newRow("ASCII") << ese_code_page::ascii << QStringLiteral("Reminder 1") << QByteArray("Reminder 1");
    QTest::newRow("1252") << ese_code_page::windows_1252 << QString::fromUtf8("Zoë €5 – “ok” Ÿ")
                          << QByteArray("Zo\xEB \x80"
                                        "5 \x96 \x93ok\x94 \x9F");
    QTest::newRow("no code page is 1252") << ese_code_page::none << QString::fromUtf8("ÿ…") << QByteArray("\xFF\x85");
    QTest::newRow("UTF-16") << ese_code_page::utf_16 << QString::fromUtf8("aß書") << hex("6100df00f866");
    QTest::newRow("UTF-16 above U+FFFF") << ese_code_page::utf_16 << QString::fromUtf8("𐀀🦊􏿿")
                                         << hex("00d800dc3ed88addffdbffdf");
}

void test_ese_writer::text_in_each_code_page() {
    QFETCH(ese_code_page, code_page);
    QFETCH(QString, text);
    QFETCH(QByteArray, stored);
    const auto fixed_size = static_cast<std::uint32_t>(stored.size() + 4);
    const std::vector<ese_column> columns = {{1, "fixed", ese_type::text, code_page, fixed_size},
                                             {128, "variable", ese_type::text, code_page, 0},
                                             {256, "tagged", ese_type::text, code_page, 0},
                                             {257, "large", ese_type::large_text, code_page, 0},
                                             {258, "long", ese_type::large_text, code_page, 0}};
    const std::string utf8 = text.toStdString();
    const bool wide = code_page == ese_code_page::utf_16;
    for (const auto page_size : page_sizes) {
        const auto long_value = ese_value(utf8).put(ese_value::place::long_value);
        example.write(page_size, columns, {{utf8, utf8, utf8, utf8, long_value}});
        const file_view file(example.path());
        const auto row = file.table("Table").row(0);
        QCOMPARE(row.bytes(0), stored + (wide ? hex("20002000") : QByteArray("    ")));
        for (int i = 1; i < 5; ++i) {
            QCOMPARE(row.bytes(i), stored);
            QCOMPARE(row.text(i), text);
        }
    }
}

// libesedb does not look at the NULL bits: a NULL fixed value reads as the bytes that Windows leaves there.
void test_ese_writer::null_keeps_other_values_in_place() {
    const std::vector<ese_column> columns = {
        {0, "when", ese_type::date_time, {}, 0},   {0, "small", ese_type::unsigned_8, {}, 0},
        {0, "number", ese_type::signed_32, {}, 0}, {0, "behind", ese_type::signed_64, {}, 0},
        {0, "first", ese_type::text, {}, 0},       {0, "second", ese_type::text, {}, 0},
        {0, "large", ese_type::large_text, {}, 0}, {0, "larger", ese_type::large_text, {}, 0}};
    for (const auto page_size : page_sizes) {
        example.write(page_size, columns, {{nullptr, nullptr, 5, nullptr, nullptr, "two", nullptr, "L"}, {}, {1}});
        const file_view file(example.path());
        const auto table = file.table("Table");
        QCOMPARE(table.rows(), 3);
        const auto row = table.row(0);
        QCOMPARE(row.bytes(0), QByteArray(8, '\x2A'));
        QCOMPARE(row.bytes(1), QByteArray(1, '\x2A'));
        QCOMPARE(row.bytes(2), hex("05000000"));
        QCOMPARE(row.bytes(3), QByteArray());
        QCOMPARE(row.bytes(4), QByteArray());
        QCOMPARE(row.text(5), QStringLiteral("two"));
        QCOMPARE(row.bytes(6), QByteArray());
        QCOMPARE(row.text(7), QStringLiteral("L"));
        QCOMPARE(table.row(2).bytes(0), hex("0100000000000000"));
        for (int i = 0; i < 8; ++i) {
            QCOMPARE(table.row(1).bytes(i), QByteArray());
        }
        // The bits themselves, which other readers go by: columns 1 and 2 NULL, 3 not, those without a column set.
        QFile raw(example.path());
        QVERIFY(raw.open(QIODevice::ReadOnly));
        QVERIFY(raw.readAll().contains(QByteArray(9, '\x2A') + hex("05000000fb")));
    }
}

// libesedb adds the sizes up instead of reading these; other readers need them.
void test_ese_writer::catalog_has_record_offsets() {
    example.write(4096,
                  {{1, "first", ese_type::signed_64, {}, 0},
                   {2, "second", ese_type::text, {}, 11},
                   {3, "third", ese_type::signed_16, {}, 0}},
                  {});
    QFile file(example.path());
    QVERIFY(file.open(QIODevice::ReadOnly));
    const QByteArray data = file.readAll();
    // Offset, two bytes of NULL bits, length of the name.
    QVERIFY(data.contains(hex("040080fe0500") + "first"));
    QVERIFY(data.contains(hex("0c0080fe0600") + "second"));
    QVERIFY(data.contains(hex("170080fe0500") + "third"));
}

void test_ese_writer::empty_values_leave_their_neighbours_alone() {
    const std::vector<ese_column> columns = {{128, "v1", ese_type::text, {}, 0},
                                             {130, "v3", ese_type::binary, {}, 0},
                                             {256, "t1", ese_type::text, {}, 0},
                                             {260, "t2", ese_type::large_text, {}, 0},
                                             {300, "t3", ese_type::binary, {}, 0}};
    for (const auto page_size : page_sizes) {
        example.write(page_size, columns, {{"", ese_value::bytes("B"), "", "", ese_value::bytes("C")}});
        const file_view file(example.path());
        const auto row = file.table("Table").row(0);
        QCOMPARE(row.bytes(0), QByteArray());
        QCOMPARE(row.bytes(1), QByteArray("B"));
        QCOMPARE(row.bytes(2), QByteArray());
        QCOMPARE(row.bytes(3), QByteArray());
        QCOMPARE(row.bytes(4), QByteArray("C"));
    }
}

void test_ese_writer::full_record_moves_its_largest_values_out() {
    const auto type = ese_type::large_binary;
    const std::vector<ese_column> columns = {{300, "a", type, {}, 0}, {301, "b", type, {}, 0}, {302, "c", type, {}, 0},
                                             {303, "d", type, {}, 0}, {304, "e", type, {}, 0}, {305, "f", type, {}, 0}};
    ese_row row;
    for (const std::size_t size : {900U, 1000U, 950U, 1024U, 700U, 1020U}) {
        row.push_back(ese_value::bytes(pattern(size, static_cast<unsigned>(size))));
    }
    row[1].put(ese_value::place::record);
    example.write(4096, columns, {row});
    const file_view file(example.path());
    const auto read = file.table("Table").row(0);
    QVERIFY(read.is_valid());
    const bool outside[] = {false, false, false, true, false, true};
    const unsigned sizes[] = {900, 1000, 950, 1024, 700, 1020};
    for (int i = 0; i < 6; ++i) {
        QCOMPARE(read.is_long(i), outside[i]);
        QCOMPARE(read.bytes(i), array(pattern(sizes[i], sizes[i])));
    }
}

// libesedb counts the rows of such a table, and reads none.
void test_ese_writer::super_large_column_spoils_only_its_own_table() {
    for (const auto page_size : page_sizes) {
        ese_writer file(example.std_path(), page_size);
        for (const auto type : {ese_type::super_large, ese_type::large_binary}) {
            file.begin_table(type == ese_type::super_large ? "Super" : "Plain",
                             {{1, "id", ese_type::signed_32, {}, 0}, {256, "data", type, {}, 0}});
            file.add_row({1, ese_value::bytes("inside")});
            file.add_row({2, ese_value::bytes(pattern(5000, 2))});
            file.end_table();
        }
        file.close();
        const file_view read(example.path());
        QCOMPARE(read.table("Super").rows(), 2);
        QVERIFY(!read.table("Super").row(0).is_valid());
        QCOMPARE(read.table("Plain").row(0).bytes(1), QByteArray("inside"));
        QCOMPARE(read.table("Plain").row(1).bytes(1), array(pattern(5000, 2)));
    }
}

void test_ese_writer::bad_requests_data() {
    QTest::addColumn<ese_type>("type");
    QTest::addColumn<int>("id");
    QTest::addColumn<ese_value>("value");
    const auto add = [](const char* name, ese_type type, int id, const ese_value& value) {
        QTest::newRow(name) << type << id << value;
    };
    add("number too large", ese_type::signed_16, 2, 32768);
    add("negative number without sign", ese_type::unsigned_32, 2, -1);
    add("float too large", ese_type::float_32, 2, 1e39);
    add("text for a number", ese_type::signed_32, 2, "1");
    add("fraction for an integer", ese_type::signed_32, 2, 0.5);
    add("wrong size of a GUID", ese_type::guid, 2, ese_value::bytes("short"));
    add("text is not UTF-8", ese_type::text, 128, "\xC3(");
    add("UTF-8 of a surrogate", ese_type::text, 128, "\xED\xA0\x80");
    add("overlong UTF-8", ese_type::text, 128, "\xC0\x80");
    add("UTF-8 cut off", ese_type::text, 128, "\xE6\x9B");
    add("character not in 1252", ese_type::text, 128, "\xE6\x9B\xB8");
    add("record larger than a page", ese_type::binary, 128, ese_value::bytes(std::string(5000, 'x')));
    add("gap in the fixed ids", ese_type::signed_32, 3, 1);
    add("id taken", ese_type::signed_32, 1, 1);
    add("large type in a variable column", ese_type::large_text, 128, "x");
    add("number in a variable column", ese_type::signed_32, 128, 1);
    add("id too large", ese_type::text, 65536, "x");
    add("fixed text without a size", ese_type::text, 2, "x");
}

void test_ese_writer::bad_requests() {
    QFETCH(ese_type, type);
    QFETCH(int, id);
    QFETCH(ese_value, value);
    const std::vector<ese_column> columns = {{1, "first", ese_type::signed_32, {}, 0},
                                             {static_cast<std::uint32_t>(id), "tested", type, {}, 0}};
    QVERIFY_EXCEPTION_THROWN(example.write(4096, columns, {{1, value}}), ese_error);
}

void test_ese_writer::file_without_close_does_not_open() {
    {
        ese_writer file(example.std_path(), 4096);
        file.begin_table("Table", {{1, "id", ese_type::signed_32, {}, 0}});
        file.add_row({1});
        QVERIFY_EXCEPTION_THROWN(file.close(), ese_error);
        QVERIFY_EXCEPTION_THROWN(file.begin_table("Other", {}), ese_error);
        QVERIFY_EXCEPTION_THROWN(file.add_row({1, 2}), ese_error);
    }
    QVERIFY(!file_view(example.path()).is_valid());
    QVERIFY_EXCEPTION_THROWN(ese_writer(example.std_path() + "/below.edb"), ese_error);
    QVERIFY_EXCEPTION_THROWN(ese_writer(example.std_path(), 1024), ese_error);
}

QTEST_GUILESS_MAIN(test_ese_writer)
#include "test_ese_writer.moc"
