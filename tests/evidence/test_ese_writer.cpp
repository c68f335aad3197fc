// SPDX-License-Identifier: MIT
// Values of every kind, trees of every height, large catalogs and long values through the ESE writer and back through
// libesedb.
#include "evidence/ese_bytes.h"
#include "tests/evidence/ese_example.h"
#include "tests/evidence/ese_file_view.h"

#include <QFile>
#include <QtTest>

#include <limits>

Q_DECLARE_METATYPE(ese_value)
Q_DECLARE_METATYPE(ese_type)
Q_DECLARE_METATYPE(ese_code_page)

namespace {

using type = ese_type;
using code = ese_code_page;

ese_value raw(const std::string& bytes) {
    return ese_value::bytes(bytes);
}
QByteArray hex(const char* digits) {
    return QByteArray::fromHex(digits);
}

} // namespace

class test_ese_writer : public QObject {
    Q_OBJECT

    example_file example;

private Q_SLOTS:
    void value_of_each_type_data();
    void value_of_each_type();
    void null_and_empty_values_keep_others_in_place();
    void catalog_has_record_offsets();
    void full_record_moves_its_largest_values_out();
    void bad_requests_data();
    void bad_requests();
    void file_without_close_does_not_open();
    void long_values();
    void rows_in_trees_of_every_height();
    void every_fill_of_a_single_page();
    void many_tables();
    void many_columns();
};

void test_ese_writer::value_of_each_type_data() {
    QTest::addColumn<ese_type>("stored_type");
    QTest::addColumn<ese_value>("value");
    QTest::addColumn<QByteArray>("stored");
    QTest::addColumn<ese_code_page>("code_page");
    const auto add = [](const char* name, type of, const ese_value& value, const char* stored, code page = code::none) {
        QTest::newRow(name) << of << value << hex(stored) << page;
    };
    add("boolean true", type::boolean, true, "ff");
    add("boolean false", type::boolean, false, "00");
    add("boolean odd byte", type::boolean, raw("\x02"), "02");
    add("u8", type::unsigned_8, 200, "c8");
    add("i16", type::signed_16, -2, "feff");
    add("u16", type::unsigned_16, 65535, "ffff");
    add("i32", type::signed_32, -70000, "90eefeff");
    add("u32", type::unsigned_32, 4294967295U, "ffffffff");
    add("currency", type::currency, -1, "ffffffffffffffff");
    add("i64", type::signed_64, std::numeric_limits<std::int64_t>::min(), "0000000000000080");
    add("float", type::float_32, 0.1F, "cdcccc3d");
    add("float of an integer", type::float_32, -2, "000000c0");
    add("double", type::float_64, 0.1, "9a9999999999b93f");
    add("date and time", type::date_time, 132000000000000000, "00005af64cf5d401");
    add("OLE date", type::date_time, 0.5, "000000000000e03f");
    add("GUID", type::guid, raw("0123456789abcdef"), "30313233343536373839616263646566");
    add("binary", type::binary, raw(std::string("\0a\0\xFF", 4)), "006100ff");
    add("large binary", type::large_binary, raw(std::string("\0\0", 2)), "0000");
    add("large text", type::large_text, "x\xC3\xA4", "78e4");
    add("ASCII", type::text, "abc 1", "6162632031", code::ascii);
    add("1252", type::text, "Zoë €5 – “ok” Ÿ", "5a6feb208035209620936f6b94209f", code::windows_1252);
    add("no code page is 1252", type::text, "ÿ…", "ff85");
    add("UTF-16", type::text, "aß書", "6100df00f866", code::utf_16);
    add("UTF-16 above U+FFFF", type::text, "𐀀🦊\xF4\x8F\xBF\xBF", "00d800dc3ed88addffdbffdf", code::utf_16);
}

// In every place that the type may have, beside other columns, on every page size.
void test_ese_writer::value_of_each_type() {
    QFETCH(ese_type, stored_type);
    QFETCH(ese_value, value);
    QFETCH(QByteArray, stored);
    QFETCH(ese_code_page, code_page);
    const bool large = stored_type == type::large_binary || stored_type == type::large_text;
    const bool sized = stored_type != type::text && stored_type != type::binary && !large;
    const std::uint32_t fixed = large ? 300 : 2;
    const QByteArray blanks = code_page == code::utf_16 ? hex("20002000") : QByteArray("    ");
    const QByteArray padded = stored_type == type::text ? stored + blanks : stored;
    const std::vector<ese_column> columns = {
        column(1, type::signed_32),
        column(fixed, stored_type, code_page, static_cast<std::uint32_t>(padded.size())),
        column(fixed + 1, large ? stored_type : type::unsigned_8),
        column(large || sized ? 350 : 130, stored_type, code_page),
        column(400, stored_type, code_page),
        column(401, type::text),
    };
    for (const auto page_size : page_sizes) {
        example.write(page_size, columns, {{7, value, raw("Z"), value, value, "end"}});
        const file_view file(example.path());
        QCOMPARE(file.table().row(0).all(), QByteArrayList({hex("07000000"), padded, "Z", stored, stored, "end"}));
    }
}

// libesedb does not look at the NULL bits: a NULL fixed value reads as the bytes that Windows leaves there.
void test_ese_writer::null_and_empty_values_keep_others_in_place() {
    const std::vector<ese_column> columns = {
        column(1, type::date_time), column(2, type::unsigned_8), column(3, type::signed_32), column(4, type::signed_64),
        column(128, type::text),    column(130, type::text),     column(256, type::text),    column(260, type::binary)};
    for (const auto page_size : page_sizes) {
        example.write(page_size, columns,
                      {{nullptr, nullptr, 5, nullptr, nullptr, "two", nullptr, raw("L")},
                       {},
                       {1, nullptr, nullptr, nullptr, "", "B", "", raw("C")}});
        const file_view file(example.path());
        const auto table = file.table();
        const QByteArray filler(8, '\x2A');
        QCOMPARE(table.rows(), 3);
        QCOMPARE(table.row(0).all(), QByteArrayList({filler, "\x2A", hex("05000000"), "", "", "two", "", "L"}));
        QCOMPARE(table.row(1).all(), QByteArrayList({"", "", "", "", "", "", "", ""}));
        QCOMPARE(table.row(2).all(), QByteArrayList({hex("0100000000000000"), "", "", "", "", "B", "", "C"}));
        // The bits themselves, which other readers go by: columns 1 and 2 NULL, 3 not, those without a column set.
        QFile stored(example.path());
        QVERIFY(stored.open(QIODevice::ReadOnly));
        QVERIFY(stored.readAll().contains(filler + hex("2a05000000fb")));
    }
}

// libesedb adds the sizes up instead of reading these; other readers need them.
void test_ese_writer::catalog_has_record_offsets() {
    example.write(4096, {column(1, type::signed_64), column(2, type::text, {}, 11), column(3, type::signed_16)}, {});
    QFile file(example.path());
    QVERIFY(file.open(QIODevice::ReadOnly));
    const QByteArray data = file.readAll();
    // Offset, two bytes of NULL bits, length of the name.
    QVERIFY(data.contains(hex("040080fe0800") + "column 1"));
    QVERIFY(data.contains(hex("0c0080fe0800") + "column 2"));
    QVERIFY(data.contains(hex("170080fe0800") + "column 3"));
}

void test_ese_writer::full_record_moves_its_largest_values_out() {
    const unsigned sizes[] = {900, 1000, 950, 1024, 700, 1020};
    std::vector<ese_column> columns;
    ese_row row;
    for (const unsigned size : sizes) {
        columns.push_back(column(300 + static_cast<std::uint32_t>(columns.size()), type::large_binary));
        row.push_back(raw(pattern(size, size)));
    }
    row[1].put(ese_value::place::record);
    example.write(4096, columns, {row});
    const file_view file(example.path());
    const auto read = file.table().row(0);
    QVERIFY(read.is_valid());
    for (int i = 0; i < 6; ++i) {
        QCOMPARE(read.is_long(i), i == 3 || i == 5);
        QCOMPARE(read.bytes(i), array(pattern(sizes[i], sizes[i])));
    }
}

void test_ese_writer::bad_requests_data() {
    QTest::addColumn<ese_type>("stored_type");
    QTest::addColumn<int>("id");
    QTest::addColumn<ese_value>("value");
    const auto add = [](const char* name, type of, int id, const ese_value& value) {
        QTest::newRow(name) << of << id << value;
    };
    add("number too large", type::signed_16, 2, 32768);
    add("negative number without sign", type::unsigned_32, 2, -1);
    add("float too large", type::float_32, 2, 1e39);
    add("text for a number", type::signed_32, 2, "1");
    add("fraction for an integer", type::signed_32, 2, 0.5);
    add("wrong size of a GUID", type::guid, 2, raw("short"));
    add("text is not UTF-8", type::text, 128, "\xC3(");
    add("UTF-8 of a surrogate", type::text, 128, "\xED\xA0\x80");
    add("overlong UTF-8", type::text, 128, "\xC0\x80");
    add("UTF-8 cut off", type::text, 128, "\xE6\x9B");
    add("character not in 1252", type::text, 128, "\xE6\x9B\xB8");
    add("record larger than a page", type::binary, 128, raw(std::string(5000, 'x')));
    add("gap in the fixed ids", type::signed_32, 3, 1);
    add("id taken", type::signed_32, 1, 1);
    add("large type in a variable column", type::large_text, 128, "x");
    add("number in a variable column", type::signed_32, 128, 1);
    add("id too large", type::text, 65536, "x");
    add("fixed text without a size", type::text, 2, "x");
}

void test_ese_writer::bad_requests() {
    QFETCH(ese_type, stored_type);
    QFETCH(int, id);
    QFETCH(ese_value, value);
    const auto tested = column(static_cast<std::uint32_t>(id), stored_type);
    QVERIFY_EXCEPTION_THROWN(example.write(4096, {column(1, type::signed_32), tested}, {{1, value}}), ese_error);
}

void test_ese_writer::file_without_close_does_not_open() {
    {
        ese_writer file(example.std_path(), 4096);
        file.begin_table("Table", {column(1, type::signed_32)});
        file.add_row({1});
        QVERIFY_EXCEPTION_THROWN(file.close(), ese_error);
        QVERIFY_EXCEPTION_THROWN(file.begin_table("Other", {}), ese_error);
        QVERIFY_EXCEPTION_THROWN(file.add_row({1, 2}), ese_error);
    }
    QVERIFY(!file_view(example.path()).is_valid());
    QVERIFY_EXCEPTION_THROWN(ese_writer(example.std_path() + "/below.edb"), ese_error);
    QVERIFY_EXCEPTION_THROWN(ese_writer(example.std_path(), 1024), ese_error);
}

// Many values in a tree of several levels, of sizes about the limits, each with neighbours of other sizes.
void test_ese_writer::long_values() {
    for (const int segment : {4014, 8110, 32646}) {
        const int sizes[] = {3, 1024,        1025, segment - 1, segment, segment + 1, 2 * segment, 7 * segment / 2,
                             1, 20 * segment};
        const auto data = [&](int i) { return pattern(static_cast<size_t>(sizes[i % 10]), static_cast<unsigned>(i)); };
        const auto small = [](int i) { return pattern(300, static_cast<unsigned>(i)); };
        std::vector<ese_row> written;
        for (int i = 0; i < 150; ++i) {
            written.push_back({raw(data(i)), raw(small(i)).put(ese_value::place::long_value)});
        }
        const auto page_size = segment == 4014 ? 4096U : segment == 8110 ? 8192U : 32768U;
        example.write(page_size, {column(256, type::large_binary), column(257, type::large_binary)}, written);
        const file_view file(example.path());
        const auto table = file.table();
        QCOMPARE(table.rows(), 150);
        for (int i = 149; i >= 0; --i) {
            const auto row = table.row(i);
            const int size = sizes[i % 10];
            QCOMPARE(row.all(), QByteArrayList({array(data(i)), array(small(i))}));
            QCOMPARE(row.is_long(0), size > 1024);
            QVERIFY(size <= 1024 || row.segments(0) == (size + segment - 1) / segment);
            QVERIFY(row.is_long(1));
        }
    }
}

void test_ese_writer::rows_in_trees_of_every_height() {
    struct {
        std::uint32_t page_size;
        int rows;
        std::size_t row_size;
    } const trees[] = {
        {4096, 0, 10},      {32768, 0, 10},     {8192, 1, 10},        {8192, 1, 8132}, // as large as a page
        {4096, 500, 900},   {4096, 5000, 900},  {4096, 70000, 12},    {4096, 1000, 4036},
        {8192, 4000, 2600}, {32768, 5000, 100}, {32768, 3000, 30000},
    };
    for (const auto& tree : trees) {
        std::vector<ese_row> written;
        std::vector<std::string> values(static_cast<std::size_t>(tree.rows), std::string(tree.row_size, 'x'));
        for (int i = 0; i < tree.rows; ++i) {
            auto& value = values[static_cast<std::size_t>(i)];
            put_le(&value[2], i);
            written.push_back({raw(value)});
        }
        example.write(tree.page_size, {column(128, type::binary)}, written);
        const file_view file(example.path());
        const auto table = file.table();
        QCOMPARE(table.rows(), tree.rows);
        for (int i = 0; i < tree.rows; ++i) {
            QCOMPARE(table.row(i).bytes(0), array(values[static_cast<std::size_t>(i)]));
        }
        QVERIFY(!table.row(tree.rows).is_valid());
    }
}

// A page that is too full for a root's own value, or too full at all: no size in between may lose a row.
void test_ese_writer::every_fill_of_a_single_page() {
    for (const auto page_size : page_sizes) {
        const std::size_t half = page_size / 2;
        const std::size_t header = page_size > 8192 ? 80 : 40;
        for (std::size_t second = half - header - 80; second < half - header; ++second) {
            example.write(page_size, {column(128, type::binary)}, {{raw(pattern(half, 1))}, {raw(pattern(second, 2))}});
            const file_view file(example.path());
            QCOMPARE(file.table().rows(), 2);
            QCOMPARE(file.table().row(0).bytes(0), array(pattern(half, 1)));
            QCOMPARE(file.table().row(1).bytes(0), array(pattern(second, 2)));
        }
    }
}

// Their catalog is a tree of several pages.
void test_ese_writer::many_tables() {
    std::vector<ese_column> columns = {column(1, type::signed_32), column(256, type::large_text)};
    for (std::uint32_t id = 128; id < 140; ++id) {
        columns.push_back(column(id, type::text));
    }
    for (const auto page_size : page_sizes) {
        ese_writer file(example.std_path(), page_size);
        for (int i = 0; i < 150; ++i) {
            const auto note = ese_value("note " + std::to_string(i)).put(ese_value::place::long_value);
            example_file::add_table(file, "Table " + std::to_string(i), columns, {{i, note, "text"}});
        }
        file.close();
        const file_view read(example.path());
        QCOMPARE(read.tables(), 150);
        for (int i = 0; i < 150; ++i) {
            const auto values = read.table("Table " + std::to_string(i)).row(0).all();
            QCOMPARE(values.size(), 14);
            QCOMPARE(values.at(0), QByteArray(1, static_cast<char>(i)) + QByteArray(3, '\0'));
            QCOMPARE(values.at(1), QByteArray("text"));
            QCOMPARE(values.at(13), "note " + QByteArray::number(i));
        }
    }
}

void test_ese_writer::many_columns() {
    std::vector<ese_column> columns;
    ese_row row;
    QByteArrayList expected;
    for (int i = 0; i < 127 + 128 + 200; ++i) {
        const auto id = static_cast<std::uint32_t>(i < 255 ? i + 1 : 1000 + 3 * i);
        columns.push_back(column(id, i < 127 ? type::unsigned_16 : type::text));
        row.push_back(i < 127 ? ese_value(i) : ese_value(std::to_string(i)));
        expected << (i < 127 ? QByteArray(1, static_cast<char>(i)) + '\0' : QByteArray::number(i));
    }
    for (const auto page_size : page_sizes) {
        example.write(page_size, columns, {row});
        const file_view file(example.path());
        QCOMPARE(file.table().row(0).all(), expected);
    }
}

QTEST_GUILESS_MAIN(test_ese_writer)
#include "test_ese_writer.moc"
