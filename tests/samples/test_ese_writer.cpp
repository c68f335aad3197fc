// SPDX-License-Identifier: MIT
// Values of every kind, trees of every height, large catalogs and long values through the ESE writer and back through
// libesedb.
#include "ese/ese_handles.h"
#include "samples/ese_bytes.h"
#include "tests/ese/ese_files.h"

#include <QtTest>

Q_DECLARE_METATYPE(ese_value)
Q_DECLARE_METATYPE(ese_type)
Q_DECLARE_METATYPE(ese_code_page)

namespace {

using type = ese_type;
using code = ese_code_page;

constexpr std::uint32_t page_sizes[] = {4096, 8192, 32768};

ese_value raw(const std::string& bytes) {
    return ese_value::bytes(bytes);
}
QByteArray hex(const char* digits) {
    return QByteArray::fromHex(digits);
}
QByteArray array(const std::string& bytes) {
    return QByteArray(bytes.data(), static_cast<int>(bytes.size()));
}

// Bytes that differ from offset to offset and from seed to seed, so that a mix-up shows.
std::string pattern(std::size_t size, unsigned seed) {
    std::string result(size, '\0');
    for (char& byte : result) {
        seed = seed * 1664525U + 1013904223U;
        byte = static_cast<char>(seed >> 24);
    }
    return result;
}

ese_column column(std::uint32_t id, type of, code page = {}, std::uint32_t size = 0) {
    return {id, "column " + std::to_string(id), of, page, size};
}

// The values of each row as they are stored, a long value's pieces put together. A NULL value and an empty one look the
// same. Whatever libesedb refuses reads as "(refused)".
struct stored_table {
    QList<QByteArrayList> rows;
    QList<QVector<int>> pieces; // of each value, 0: it is in the record
};

class stored_reader : public specific_table {
public:
    using specific_table::get_column_name_and_type;
    using specific_table::get_record_values;
    void get_column_name_and_type(libesedb_record_t* record, libesedb_error_t* error) override {
        table.rows.append(QByteArrayList());
        table.pieces.append(QVector<int>());
        specific_table::get_column_name_and_type(record, error);
    }
    void get_record_values(libesedb_record_t* record, libesedb_error_t*, QString, int index, unsigned) override {
        int pieces = 0;
        if (libesedb_record_is_long_value(record, index, nullptr) == ese::success) {
            const auto value = ese::get_long_value(record, index);
            libesedb_long_value_get_number_of_data_segments(value.get(), &pieces, nullptr);
            table.rows.last() << bytes(libesedb_long_value_get_data_size, libesedb_long_value_get_data, value.get());
        } else {
            table.rows.last() << bytes(libesedb_record_get_value_data_size, libesedb_record_get_value_data, record,
                                       index);
        }
        table.pieces.last() << pieces;
    }
    stored_table table;

private:
    template <class Size, class Data, class... Place>
    static QByteArray bytes(Size get_size, Data get_data, Place... at) {
        size_t size = 0;
        const bool told = get_size(at..., &size, nullptr) == ese::success;
        QByteArray data(static_cast<int>(size), '\0');
        auto* const begin = reinterpret_cast<uint8_t*>(data.data());
        return told && (size == 0 || get_data(at..., begin, size, nullptr) == ese::success) ? data : "(refused)";
    }
};

} // namespace

class test_ese_writer : public QObject {
    Q_OBJECT

    QTemporaryDir folder;
    const QString path = folder.filePath(QStringLiteral("test.edb"));

    stored_table read_table(const QString& name = QStringLiteral("Table")) const {
        stored_reader reader;
        reader.start_parsing(path, name);
        return reader.table;
    }
    // A file with one table, read back.
    stored_table rewritten(std::uint32_t page_size, const std::vector<ese_column>& columns,
                           const std::vector<ese_row>& rows) const {
        write_ese(path, {{"Table", columns, rows}}, page_size);
        return read_table();
    }

private Q_SLOTS:
    void value_of_each_type_data() {
        QTest::addColumn<ese_type>("stored_type");
        QTest::addColumn<ese_value>("value");
        QTest::addColumn<QByteArray>("stored");
        QTest::addColumn<ese_code_page>("code_page");
        const auto add = [](const char* name, type of, const ese_value& value, const char* stored,
                            code page = code::none) { QTest::newRow(name) << of << value << hex(stored) << page; };
        add("boolean true", type::boolean, true, "ff");
        add("i32", type::signed_32, -70000, "90eefeff");
        add("float of an integer", type::float_32, -2, "000000c0");
        add("OLE date", type::date_time, 0.5, "000000000000e03f");
        add("binary", type::binary, raw(std::string("\0a\0\xFF", 4)), "006100ff");
        add("large text", type::large_text, "x\xC3\xA4", "78e4");
        add("1252", type::text, "Zoë €5 – “ok” Ÿ", "5a6feb208035209620936f6b94209f", code::windows_1252);
        add("UTF-16", type::text, "aß書𐀀🦊\xF4\x8F\xBF\xBF", "6100df00f86600d800dc3ed88addffdbffdf",
            code::utf_16);
    }

    // In every place that the type may have, beside other columns, on every page size.
    void value_of_each_type() {
        QFETCH(ese_type, stored_type);
        QFETCH(ese_value, value);
        QFETCH(QByteArray, stored);
        QFETCH(ese_code_page, code_page);
        const bool large = stored_type == type::large_text;
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
        const QByteArrayList expected{hex("07000000"), padded, "Z", stored, stored, "end"};
        for (const auto page_size : page_sizes) {
            const auto table = rewritten(page_size, columns, {{7, value, raw("Z"), value, value, "end"}});
            QCOMPARE(table.rows, QList<QByteArrayList>{expected});
        }
    }

    // libesedb does not look at the NULL bits: a NULL fixed value reads as the bytes that Windows leaves there.
    void null_and_empty_values_keep_others_in_place() {
        const std::vector<ese_column> columns = {column(1, type::date_time), column(2, type::unsigned_8),
                                                 column(3, type::signed_32), column(4, type::signed_64),
                                                 column(128, type::text),    column(130, type::text),
                                                 column(256, type::text),    column(260, type::binary)};
        const QByteArray filler(8, '\x2A');
        for (const auto page_size : page_sizes) {
            const auto table = rewritten(page_size, columns,
                                         {{nullptr, nullptr, 5, nullptr, nullptr, "two", nullptr, raw("L")},
                                          {},
                                          {1, nullptr, nullptr, nullptr, "", "B", "", raw("C")}});
            QCOMPARE(table.rows, (QList<QByteArrayList>{{filler, "\x2A", hex("05000000"), "", "", "two", "", "L"},
                                                        {"", "", "", "", "", "", "", ""},
                                                        {hex("0100000000000000"), "", "", "", "", "B", "", "C"}}));
        }
    }

    void full_record_moves_its_largest_values_out() {
        std::vector<ese_column> columns;
        ese_row row;
        QByteArrayList expected;
        for (const unsigned size : {900U, 1000U, 950U, 1024U, 700U, 1020U}) {
            columns.push_back(column(300 + static_cast<std::uint32_t>(columns.size()), type::large_binary));
            row.push_back(raw(pattern(size, size)));
            expected << array(pattern(size, size));
        }
        row[1].put(ese_value::place::record);
        const auto table = rewritten(4096, columns, {row});
        QCOMPARE(table.rows, QList<QByteArrayList>{expected});
        QCOMPARE(table.pieces, QList<QVector<int>>{QVector<int>({0, 0, 0, 1, 0, 1})});
    }

    // Many values in a tree of several levels, of sizes about the limits, each with neighbours of other sizes.
    void long_values() {
        for (const auto& [page_size, segment] : {std::pair(4096U, 4014), {8192U, 8110}, {32768U, 32646}}) {
            const int sizes[] = {3, 1024,        1025, segment - 1, segment, segment + 1, 2 * segment, 7 * segment / 2,
                                 1, 20 * segment};
            std::vector<ese_row> written;
            stored_table expected;
            for (unsigned i = 0; i < 60; ++i) {
                const int size = sizes[i % 10];
                const std::string data = pattern(static_cast<size_t>(size), i);
                const std::string small = pattern(300, i);
                written.push_back({raw(data), raw(small).put(ese_value::place::long_value)});
                expected.rows.append({array(data), array(small)});
                expected.pieces.append({size > 1024 ? (size + segment - 1) / segment : 0, 1});
            }
            const auto table =
                rewritten(page_size, {column(256, type::large_binary), column(257, type::large_binary)}, written);
            QCOMPARE(table.rows, expected.rows);
            QCOMPARE(table.pieces, expected.pieces);
        }
    }

    void rows_in_trees_of_every_height() {
        struct {
            std::uint32_t page_size;
            int rows;
            std::size_t row_size;
        } const trees[] = {
            {4096, 0, 10},      {32768, 0, 10},     {8192, 1, 10},       {8192, 1, 8132}, // as large as a page
            {4096, 500, 900},   {4096, 5000, 900},  {4096, 10000, 12},   {4096, 600, 4036},
            {8192, 1500, 2600}, {32768, 5000, 100}, {32768, 700, 30000},
        };
        for (const auto& tree : trees) {
            std::vector<ese_row> written;
            QList<QByteArrayList> expected;
            for (int i = 0; i < tree.rows; ++i) {
                std::string value(tree.row_size, 'x');
                put_le(&value[2], i);
                written.push_back({raw(value)});
                expected.append({array(value)});
            }
            QCOMPARE(rewritten(tree.page_size, {column(128, type::binary)}, written).rows, expected);
        }
    }

    // A page that is too full for a root's own value, or too full at all: no size in between may lose a row.
    void every_fill_of_a_single_page() {
        for (const auto page_size : page_sizes) {
            const std::string half = pattern(page_size / 2, 1);
            const std::size_t header = page_size > 8192 ? 80 : 40;
            for (std::size_t size = half.size() - header - 80; size < half.size() - header; ++size) {
                const std::string second = pattern(size, 2);
                QCOMPARE(rewritten(page_size, {column(128, type::binary)}, {{raw(half)}, {raw(second)}}).rows,
                         (QList<QByteArrayList>{{array(half)}, {array(second)}}));
            }
        }
    }

    // Their catalog is a tree of several pages.
    void many_tables() {
        const std::vector<ese_column> columns = {column(1, type::signed_32), column(256, type::large_text)};
        for (const auto page_size : page_sizes) {
            std::vector<test_table> tables;
            for (int i = 0; i < 250; ++i) {
                const std::string number = std::to_string(i);
                tables.push_back({number, columns, {{i, ese_value(number).put(ese_value::place::long_value)}}});
            }
            write_ese(path, tables, page_size);
            for (int i = 0; i < 250; i += 7) {
                const QByteArray stored = QByteArray(1, static_cast<char>(i)) + QByteArray(3, '\0');
                const QByteArray number = QByteArray::number(i);
                QCOMPARE(read_table(QLatin1String(number)).rows, (QList<QByteArrayList>{{stored, number}}));
            }
        }
    }

    void many_columns() {
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
            QCOMPARE(rewritten(page_size, columns, {row}).rows, QList<QByteArrayList>{expected});
        }
    }
};

QTEST_GUILESS_MAIN(test_ese_writer)
#include "test_ese_writer.moc"
