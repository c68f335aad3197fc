// SPDX-License-Identifier: MIT
// Damage to ESE files is where it was asked for, and libesedb sees it.
#include "evidence/ese_damage.h"
#include "tests/evidence/ese_example.h"
#include "tests/evidence/ese_file_view.h"

#include <QFile>
#include <QtTest>

#include <algorithm>

namespace {

constexpr int rows_written = 2000;

QByteArray content(const QString& path) {
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

} // namespace

class test_ese_damage : public QObject {
    Q_OBJECT

    example_file example;
    void write(std::uint32_t page_size) const;
    std::vector<ese_page> leaves(std::uint32_t object) const;

private Q_SLOTS:
    void pages_of_tables_data();
    void pages_of_tables();
    void zeroed_leaf_breaks_its_table();
    void copied_page_repeats_its_rows();
    void flipped_bit_changes_one_value();
    void truncated_file_loses_a_table();
    void header_damage_and_repair();
    void places_outside_the_file();
};

// "First" of 2,000 rows with a long value in every tenth, and "Second" of the same size without.
void test_ese_damage::write(std::uint32_t page_size) const {
    ese_writer file(example.std_path(), page_size);
    for (const char* const name : {"First", "Second"}) {
        file.begin_table(name, {{0, "id", ese_type::signed_32, {}, 0}, {0, "data", ese_type::large_binary, {}, 0}});
        const bool with_long = *name == 'F';
        for (int i = 0; i < rows_written; ++i) {
            const std::size_t size = with_long && i % 10 == 0 ? 2000 : 200;
            file.add_row({i, ese_value::bytes(pattern(size, static_cast<unsigned>(i)))});
        }
        file.end_table();
    }
    file.close();
}

std::vector<ese_page> test_ese_damage::leaves(std::uint32_t object) const {
    auto pages = ese_pages_of(example.std_path(), object);
    pages.erase(std::remove_if(pages.begin(), pages.end(), [](const ese_page& page) { return !page.is_leaf; }),
                pages.end());
    return pages;
}

void test_ese_damage::pages_of_tables_data() {
    QTest::addColumn<int>("page_size");
    QTest::newRow("4096") << 4096;
    QTest::newRow("8192") << 8192;
    QTest::newRow("32768") << 32768;
}

void test_ese_damage::pages_of_tables() {
    QFETCH(int, page_size);
    write(static_cast<std::uint32_t>(page_size));
    const auto path = example.std_path();
    QCOMPARE(static_cast<int>(ese_page_size(path)), page_size);
    const auto first = ese_table_object(path, "First");
    const auto second = ese_table_object(path, "Second");
    const auto long_values = ese_long_value_object(path, "First");
    QVERIFY(first != second && long_values != 0 && long_values != first && long_values != second);
    QCOMPARE(ese_long_value_object(path, "Second"), 0U);
    QVERIFY_EXCEPTION_THROWN(ese_table_object(path, "first"), ese_error);
    const std::pair<std::uint32_t, int> entries[] = {
        {first, rows_written}, {second, rows_written}, {long_values, rows_written / 10 * 2}};
    for (const auto& [object, expected] : entries) {
        const auto pages = ese_pages_of(path, object);
        QCOMPARE(std::count_if(pages.begin(), pages.end(), [](const ese_page& page) { return page.is_root; }), 1);
        int found = 0;
        for (const auto& leaf : leaves(object)) {
            found += leaf.tags - 1;
        }
        QCOMPARE(found, expected);
    }
}

// libesedb counts rows along the chain of leaves, which a page of zeros breaks.
void test_ese_damage::zeroed_leaf_breaks_its_table() {
    write(4096);
    const auto path = example.std_path();
    const auto pages = leaves(ese_table_object(path, "First"));
    ese_zero_page(path, pages[2].number);
    {
        const file_view file(example.path());
        QCOMPARE(file.table("First").rows(), -1);
        QCOMPARE(file.table("Second").rows(), rows_written);
    }
    ese_zero_page(path, pages[0].number);
    const file_view file(example.path());
    QCOMPARE(file.table("First").rows(), 0);
    QCOMPARE(file.table("Second").rows(), rows_written);
}

void test_ese_damage::copied_page_repeats_its_rows() {
    write(4096);
    const auto path = example.std_path();
    const auto pages = leaves(ese_table_object(path, "Second"));
    // The copy is a leaf without a next one, so the chain of leaves ends there.
    ese_copy_page(path, pages.back().number, pages[1].number);
    const int per_page = pages[0].tags - 1;
    const file_view file(example.path());
    const auto second = file.table("Second");
    QCOMPARE(second.rows(), per_page + pages.back().tags - 1);
    QCOMPARE(second.row(per_page - 1).bytes(0), array({static_cast<char>(per_page - 1), 0, 0, 0}));
    const int last = rows_written - (pages.back().tags - 1);
    QCOMPARE(second.row(per_page).bytes(0),
             array({static_cast<char>(last & 0xFF), static_cast<char>(last >> 8), 0, 0}));
}

void test_ese_damage::flipped_bit_changes_one_value() {
    write(8192);
    const auto before = content(example.path());
    const auto value = array(pattern(200, 77));
    const int at = before.indexOf(value);
    QVERIFY(at > 0);
    ese_flip_bit(example.std_path(), static_cast<std::uint64_t>(at) + 199, 7);
    ese_set_byte(example.std_path(), static_cast<std::uint64_t>(at), 0x11);
    auto changed = value;
    changed[0] = 0x11;
    changed[199] = static_cast<char>(changed[199] ^ 0x80);
    const file_view file(example.path());
    QCOMPARE(file.table("First").row(77).bytes(1), changed);
    QCOMPARE(file.table("First").row(78).bytes(1), array(pattern(200, 78)));
    QCOMPARE(file.table("Second").row(77).bytes(1), value);
    QCOMPARE(content(example.path()).size(), before.size());
}

void test_ese_damage::truncated_file_loses_a_table() {
    write(4096);
    const auto pages = ese_pages_of(example.std_path(), ese_table_object(example.std_path(), "Second"));
    ese_truncate(example.std_path(), (pages.front().number + 1ULL) * 4096);
    const file_view file(example.path());
    QVERIFY(file.is_valid());
    QCOMPARE(file.table("Second").rows(), -1);
    QCOMPARE(file.table("First").row(5).bytes(1), array(pattern(200, 5)));
    ese_truncate(example.std_path(), 0);
    QVERIFY(!file_view(example.path()).is_valid());
}

void test_ese_damage::header_damage_and_repair() {
    write(4096);
    constexpr std::uint64_t highest_object = 212;
    for (const std::uint64_t copy : {0U, 4096U}) {
        ese_flip_bit(example.std_path(), copy + highest_object, 3);
        QVERIFY(!file_view(example.path()).is_valid());
        ese_repair_header(example.std_path());
        QCOMPARE(file_view(example.path()).table("First").rows(), rows_written);
    }
}

void test_ese_damage::places_outside_the_file() {
    write(4096);
    const auto path = example.std_path();
    const auto before = content(example.path());
    const auto size = static_cast<std::uint64_t>(before.size());
    const auto pages = static_cast<std::uint32_t>(size / 4096);
    QVERIFY_EXCEPTION_THROWN(ese_truncate(path, size + 1), ese_error);
    QVERIFY_EXCEPTION_THROWN(ese_flip_bit(path, size, 0), ese_error);
    QVERIFY_EXCEPTION_THROWN(ese_zero_page(path, pages), ese_error);
    QVERIFY_EXCEPTION_THROWN(ese_copy_page(path, pages, 25), ese_error);
    QVERIFY_EXCEPTION_THROWN(ese_copy_page(path, 25, pages), ese_error);
    QVERIFY_EXCEPTION_THROWN(ese_page_size(path + ".missing"), ese_error);
    QVERIFY(content(example.path()) == before);
}

QTEST_GUILESS_MAIN(test_ese_damage)
#include "test_ese_damage.moc"
