// SPDX-License-Identifier: MIT
// Damage to ESE files is where it was asked for, and libesedb sees it.
#include "evidence/ese_damage.h"
#include "tests/evidence/ese_example.h"
#include "tests/evidence/ese_file_view.h"

#include <QFile>
#include <QtTest>

#include <algorithm>

static constexpr int rows_written = 2000;

class test_ese_damage : public QObject {
    Q_OBJECT

    example_file example;
    const std::string path = example.std_path();

    void write(std::uint32_t page_size = 4096) const;
    std::vector<ese_page> leaves(std::uint32_t object) const;
    file_view view() const { return file_view(example.path()); }
    QByteArray content() const {
        QFile file(example.path());
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    }

private Q_SLOTS:
    void pages_of_tables();
    void damaged_pages();
    void changed_bytes();
    void header_damage_and_repair();
    void places_outside_the_file();
};

// "First" of 2,000 rows with a long value in every tenth, and "Second" of the same size without.
void test_ese_damage::write(std::uint32_t page_size) const {
    ese_writer file(path, page_size);
    for (const unsigned long_every : {10U, 10000U}) {
        std::vector<ese_row> rows;
        for (unsigned i = 0; i < rows_written; ++i) {
            const bool is_long = long_every == 10 && i % 10 == 0;
            rows.push_back({i, ese_value::bytes(pattern(is_long ? 2000 : 200, i))});
        }
        example_file::add_table(file, long_every == 10 ? "First" : "Second",
                                {column(1, ese_type::signed_32), column(256, ese_type::large_binary)}, rows);
    }
    file.close();
}

std::vector<ese_page> test_ese_damage::leaves(std::uint32_t object) const {
    auto pages = ese_pages_of(path, object);
    pages.erase(std::remove_if(pages.begin(), pages.end(), [](const ese_page& page) { return !page.is_leaf; }),
                pages.end());
    return pages;
}

void test_ese_damage::pages_of_tables() {
    for (const auto page_size : page_sizes) {
        write(page_size);
        QCOMPARE(ese_page_size(path), page_size);
        const auto first = ese_table_object(path, "First");
        const auto second = ese_table_object(path, "Second");
        const auto long_values = ese_long_value_object(path, "First");
        QCOMPARE(ese_long_value_object(path, "Second"), 0U);
        QVERIFY_EXCEPTION_THROWN(ese_table_object(path, "first"), ese_error);
        QVERIFY(first != second);
        for (const auto object : {first, second, long_values}) {
            const auto pages = ese_pages_of(path, object);
            QCOMPARE(std::count_if(pages.begin(), pages.end(), [](const ese_page& page) { return page.is_root; }), 1);
            int found = 0;
            for (const auto& leaf : leaves(object)) {
                found += leaf.tags - 1;
            }
            QCOMPARE(found, object == long_values ? rows_written / 10 * 2 : rows_written);
        }
    }
}

// libesedb counts rows along the chain of leaves, which a page of zeros breaks.
void test_ese_damage::damaged_pages() {
    write();
    const auto first = leaves(ese_table_object(path, "First"));
    const auto second = leaves(ese_table_object(path, "Second"));
    ese_zero_page(path, first[2].number);
    QCOMPARE(view().table("First").rows(), -1);
    ese_zero_page(path, first[0].number);
    QCOMPARE(view().table("First").rows(), 0);
    QCOMPARE(view().table("Second").rows(), rows_written);
    // The copy is a leaf without a next one, so the chain of leaves ends there.
    ese_copy_page(path, second.back().number, second[1].number);
    const int per_page = second[0].tags - 1;
    const int copied = second.back().tags - 1;
    const file_view file(example.path());
    const auto table = file.table("Second");
    QCOMPARE(table.rows(), per_page + copied);
    const auto row = static_cast<unsigned>(rows_written - copied);
    QCOMPARE(table.row(per_page - 1).bytes(1), array(pattern(200, static_cast<unsigned>(per_page - 1))));
    QCOMPARE(table.row(per_page).bytes(1), array(pattern(200, row)));
}

void test_ese_damage::changed_bytes() {
    write(8192);
    const auto before = content();
    auto value = array(pattern(200, 77));
    const int at = before.indexOf(value);
    QVERIFY(at > 0);
    ese_flip_bit(path, static_cast<std::uint64_t>(at) + 199, 7);
    ese_set_byte(path, static_cast<std::uint64_t>(at), 0x11);
    value[0] = 0x11;
    value[199] = static_cast<char>(value[199] ^ 0x80);
    QVERIFY(content() == QByteArray(before).replace(at, 200, value));
}

void test_ese_damage::header_damage_and_repair() {
    write();
    constexpr std::uint64_t highest_object = 212;
    for (const std::uint64_t copy : {0U, 4096U}) {
        ese_flip_bit(path, copy + highest_object, 3);
        QVERIFY(!view().is_valid());
        ese_repair_header(path);
        QCOMPARE(view().table("First").rows(), rows_written);
    }
}

void test_ese_damage::places_outside_the_file() {
    write();
    const auto before = content();
    const auto size = static_cast<std::uint64_t>(before.size());
    const auto pages = static_cast<std::uint32_t>(size / 4096);
    QVERIFY_EXCEPTION_THROWN(ese_truncate(path, size + 1), ese_error);
    QVERIFY_EXCEPTION_THROWN(ese_flip_bit(path, size, 0), ese_error);
    QVERIFY_EXCEPTION_THROWN(ese_zero_page(path, pages), ese_error);
    QVERIFY_EXCEPTION_THROWN(ese_copy_page(path, pages, 25), ese_error);
    QVERIFY_EXCEPTION_THROWN(ese_copy_page(path, 25, pages), ese_error);
    QVERIFY_EXCEPTION_THROWN(ese_page_size(path + ".missing"), ese_error);
    QVERIFY(content() == before);
}

QTEST_GUILESS_MAIN(test_ese_damage)
#include "test_ese_damage.moc"
