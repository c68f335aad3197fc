// SPDX-License-Identifier: MIT
// Trees of every height, large catalogs and long values through the ESE writer and back through libesedb.
#include "evidence/ese_bytes.h"
#include "tests/evidence/ese_example.h"
#include "tests/evidence/ese_file_view.h"

#include <QtTest>

class test_ese_trees : public QObject {
    Q_OBJECT

    example_file example;

private Q_SLOTS:
    void long_values_data();
    void long_values();
    void rows_in_trees_of_every_height_data();
    void rows_in_trees_of_every_height();
    void every_fill_of_a_single_page();
    void many_tables();
    void many_columns();
};

void test_ese_trees::long_values_data() {
    QTest::addColumn<int>("page_size");
    QTest::addColumn<int>("segment");
    QTest::newRow("4096") << 4096 << 4014;
    QTest::newRow("8192") << 8192 << 8110;
    QTest::newRow("32768") << 32768 << 32646;
}

// Many values in a tree of several levels, of sizes about the limits, each with neighbours of other sizes.
void test_ese_trees::long_values() {
    QFETCH(int, page_size);
    QFETCH(int, segment);
    const int sizes[] = {3, 1024,        1025, segment - 1, segment, segment + 1, 2 * segment, 7 * segment / 2,
                         1, 20 * segment};
    const int rows = 150;
    std::vector<ese_row> written;
    for (int i = 0; i < rows; ++i) {
        const auto size = static_cast<std::size_t>(sizes[i % 10]);
        auto small = ese_value::bytes(pattern(300, static_cast<unsigned>(i))).put(ese_value::place::long_value);
        written.push_back({i, ese_value::bytes(pattern(size, static_cast<unsigned>(i))), small});
    }
    example.write(static_cast<std::uint32_t>(page_size),
                  {{1, "id", ese_type::signed_32, {}, 0},
                   {256, "data", ese_type::large_binary, {}, 0},
                   {257, "small", ese_type::large_binary, {}, 0}},
                  written);
    const file_view file(example.path());
    const auto table = file.table("Table");
    QCOMPARE(table.rows(), rows);
    for (int i = rows - 1; i >= 0; --i) {
        const auto row = table.row(i);
        const int size = sizes[i % 10];
        QCOMPARE(row.is_long(1), size > 1024);
        QCOMPARE(row.bytes(1), array(pattern(static_cast<std::size_t>(size), static_cast<unsigned>(i))));
        if (size > 1024) {
            QCOMPARE(row.segments(1), (size + segment - 1) / segment);
        }
        QVERIFY(row.is_long(2));
        QCOMPARE(row.bytes(2), array(pattern(300, static_cast<unsigned>(i))));
    }
}

void test_ese_trees::rows_in_trees_of_every_height_data() {
    QTest::addColumn<int>("page_size");
    QTest::addColumn<int>("rows");
    QTest::addColumn<int>("row_size");
    QTest::newRow("none") << 4096 << 0 << 10;
    QTest::newRow("none, large page") << 32768 << 0 << 10;
    QTest::newRow("one") << 8192 << 1 << 10;
    QTest::newRow("one as large as a page") << 8192 << 1 << 8132;
    QTest::newRow("small page, two levels") << 4096 << 500 << 900;
    QTest::newRow("small page, three levels") << 4096 << 5000 << 900;
    QTest::newRow("a row a page") << 4096 << 1000 << 4036;
    QTest::newRow("middle page, three levels") << 8192 << 4000 << 2600;
    QTest::newRow("large page, two levels") << 32768 << 5000 << 100;
    QTest::newRow("large page, three levels") << 32768 << 3000 << 30000;
    QTest::newRow("many small rows") << 4096 << 70000 << 12;
}

void test_ese_trees::rows_in_trees_of_every_height() {
    QFETCH(int, page_size);
    QFETCH(int, rows);
    QFETCH(int, row_size);
    const auto value = [row_size](int row) {
        std::string bytes(static_cast<std::size_t>(row_size), static_cast<char>(row));
        put_le(&bytes[2], row);
        return bytes;
    };
    ese_writer file(example.std_path(), static_cast<std::uint32_t>(page_size));
    file.begin_table("Table", {{128, "data", ese_type::binary, {}, 0}});
    for (int i = 0; i < rows; ++i) {
        file.add_row({ese_value::bytes(value(i))});
    }
    file.end_table();
    file.close();
    const file_view read(example.path());
    const auto table = read.table("Table");
    QCOMPARE(table.rows(), rows);
    for (int i = 0; i < rows; ++i) {
        QCOMPARE(table.row(i).bytes(0), array(value(i)));
    }
    QVERIFY(!table.row(rows).is_valid());
}

// A page that is too full for a root's own value, or too full at all: no size in between may lose a row.
void test_ese_trees::every_fill_of_a_single_page() {
    for (const auto page_size : page_sizes) {
        const std::size_t first = page_size / 2;
        const std::size_t header = page_size > 8192 ? 80 : 40;
        for (std::size_t second = page_size / 2 - header - 80; second < page_size / 2 - header; ++second) {
            const ese_row rows[] = {{ese_value::bytes(pattern(first, 1))}, {ese_value::bytes(pattern(second, 2))}};
            example.write(page_size, {{128, "data", ese_type::binary, {}, 0}}, {rows[0], rows[1]});
            const file_view file(example.path());
            const auto table = file.table("Table");
            QCOMPARE(table.rows(), 2);
            QCOMPARE(table.row(0).bytes(0), array(pattern(first, 1)));
            QCOMPARE(table.row(1).bytes(0), array(pattern(second, 2)));
        }
    }
}

// Their catalog is a tree of several pages.
void test_ese_trees::many_tables() {
    const int tables = 150;
    for (const auto page_size : page_sizes) {
        ese_writer file(example.std_path(), page_size);
        for (int i = 0; i < tables; ++i) {
            std::vector<ese_column> columns = {{0, "id", ese_type::signed_32, {}, 0}};
            for (int k = 0; k < 12; ++k) {
                columns.push_back({0, "another column " + std::to_string(k), ese_type::text, {}, 0});
            }
            columns.push_back({0, "note", ese_type::large_text, {}, 0});
            file.begin_table("Table " + std::to_string(i), columns);
            ese_row row = {i, "text"};
            row.resize(columns.size());
            row.back() = ese_value("note " + std::to_string(i)).put(ese_value::place::long_value);
            file.add_row(row);
            file.end_table();
        }
        file.close();
        const file_view read(example.path());
        QCOMPARE(read.tables(), tables);
        for (int i = 0; i < tables; ++i) {
            const auto table = read.table(qPrintable(QStringLiteral("Table %1").arg(i)));
            QVERIFY(table.is_valid());
            QCOMPARE(table.columns(), 14);
            QCOMPARE(table.row(0).bytes(0), QByteArray(1, static_cast<char>(i)) + QByteArray(3, '\0'));
            QCOMPARE(table.row(0).text(1), QStringLiteral("text"));
            QCOMPARE(table.row(0).text(13), QStringLiteral("note %1").arg(i));
        }
    }
}

void test_ese_trees::many_columns() {
    std::vector<ese_column> columns;
    ese_row row;
    for (std::uint32_t i = 0; i < 127 + 128 + 200; ++i) {
        const auto type = i < 127 ? ese_type::unsigned_16 : ese_type::text;
        columns.push_back({i < 255 ? i + 1 : 1000 + 3 * i, "c" + std::to_string(i), type, {}, 0});
        row.push_back(i < 127 ? ese_value(i) : ese_value(std::to_string(i)));
    }
    for (const auto page_size : page_sizes) {
        example.write(page_size, columns, {row});
        const file_view file(example.path());
        const auto read = file.table("Table").row(0);
        QVERIFY(read.is_valid());
        for (int i = 0; i < 127; ++i) {
            QCOMPARE(read.bytes(i), QByteArray(1, static_cast<char>(i)) + QByteArray(1, '\0'));
        }
        for (int i = 127; i < 455; ++i) {
            QCOMPARE(read.text(i), QString::number(i));
        }
    }
}

QTEST_GUILESS_MAIN(test_ese_trees)
#include "test_ese_trees.moc"
