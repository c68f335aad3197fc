// SPDX-License-Identifier: MIT
// Checksums of ESE files: known ones, and those of every page that the writer puts into a file.
#include "evidence/ese_bytes.h"
#include "evidence/ese_checksum.h"
#include "tests/evidence/ese_example.h"

#include <QFile>
#include <QtTest>

namespace {

// The first page of a small empty tree, as Windows left it in two files that differ in the page size only.
std::string known_page(std::size_t size, std::uint16_t free_bytes) {
    std::string page(size, '\0');
    page[8] = 0x46;
    page[24] = 1;
    put_le(&page[28], free_bytes);
    page[32] = 0x1A;
    page[34] = 2;
    put_le<std::uint16_t>(&page[36], 0xA823);
    page.replace(56, 7, std::string("\x04\0\0\0\0\xFE\xFE", 7));
    page.replace(size - 8, 8, std::string("\x0A\0\x10\0\x10\0\0\0", 8));
    return page;
}

} // namespace

class test_ese_checksum : public QObject {
    Q_OBJECT

    example_file example;

private Q_SLOTS:
    void known_pages_data();
    void known_pages();
    void known_quarters();
    void changed_bit_gives_its_position_data();
    void changed_bit_gives_its_position();
    void written_file_data();
    void written_file();
};

void test_ese_checksum::known_pages_data() {
    QTest::addColumn<int>("size");
    QTest::addColumn<int>("free_bytes");
    QTest::addColumn<QByteArray>("checksum");
    QTest::newRow("4096") << 4096 << 0x0FB6 << QByteArray::fromHex("d459ec0092019201");
    QTest::newRow("8192") << 8192 << 0x1FB6 << QByteArray::fromHex("d449ec007e0181fe");
}

void test_ese_checksum::known_pages() {
    QFETCH(int, size);
    QFETCH(int, free_bytes);
    QFETCH(QByteArray, checksum);
    auto page = known_page(static_cast<std::size_t>(size), static_cast<std::uint16_t>(free_bytes));
    ese_set_page_checksums(page, 2);
    QCOMPARE(array(page).left(8), checksum);
}

void test_ese_checksum::known_quarters() {
    std::string page(32768, '\0');
    page[16384 + 8188] = 0x10;
    ese_set_page_checksums(page, 1);
    QCOMPARE(get_le<std::uint64_t>(&page[40]), std::uint64_t{1});
    QCOMPARE(get_le<std::uint64_t>(&page[48]), std::uint64_t{0x001BFFE400000011});
    QCOMPARE(get_le<std::uint64_t>(&page[56]), std::uint64_t{1});
    // The first quarter contains the other three, and leaves itself out.
    const std::string before = page;
    ese_set_page_checksums(page, 1);
    QCOMPARE(array(page), array(before));
}

void test_ese_checksum::changed_bit_gives_its_position_data() {
    QTest::addColumn<int>("size");
    QTest::newRow("4096") << 4096;
    QTest::newRow("8192") << 8192;
    QTest::newRow("32768") << 32768;
}

// A changed bit changes the upper half of the result by its position in the block and by the complement of that, which
// is how readers find it. Every seventh bit comes to all places of a word.
void test_ese_checksum::changed_bit_gives_its_position() {
    QFETCH(int, size);
    const auto block = static_cast<std::size_t>(qMin(size, 8192));
    const auto last = static_cast<std::uint32_t>(block * 8 - 1);
    std::string data = pattern(block, 5);
    const auto good = ese_block_checksum(data.data(), block, 7, false);
    for (std::uint32_t bit = 0; bit <= last; bit += 7) {
        char& byte = data[bit / 8];
        byte = static_cast<char>(byte ^ (1 << bit % 8));
        const auto change = (ese_block_checksum(data.data(), block, 7, false) ^ good) >> 32;
        QCOMPARE(static_cast<std::uint32_t>(change), (last ^ bit) << 16 | bit);
        byte = static_cast<char>(byte ^ (1 << bit % 8));
    }
}

void test_ese_checksum::written_file_data() {
    changed_bit_gives_its_position_data();
}

void test_ese_checksum::written_file() {
    QFETCH(int, size);
    std::vector<ese_row> rows;
    for (int i = 0; i < 3000; ++i) {
        rows.push_back({i, ese_value::bytes(pattern(i % 100 == 0 ? 9000 : 500, static_cast<unsigned>(i)))});
    }
    example.write(static_cast<std::uint32_t>(size),
                  {{0, "id", ese_type::signed_32, {}, 0}, {0, "data", ese_type::large_binary, {}, 0}}, rows);
    QFile file(example.path());
    QVERIFY(file.open(QIODevice::ReadOnly));
    const std::string header = file.read(size).toStdString();
    QCOMPARE(get_le<std::uint32_t>(header.data()), ese_header_checksum(header));
    QCOMPARE(file.read(size), array(header));
    std::uint32_t used = 0;
    for (std::uint32_t number = 1; !file.atEnd(); ++number) {
        const std::string page = file.read(size).toStdString();
        QCOMPARE(page.size(), static_cast<std::size_t>(size));
        if (page == std::string(page.size(), '\0')) {
            QVERIFY(number < 25); // only the reserved pages at the start are unused
            continue;
        }
        std::string summed = page;
        ese_set_page_checksums(summed, number);
        QVERIFY(summed == page);
        // Free bytes, used bytes, header and tags make up the page.
        const bool large = size > 8192;
        const int accounted = get_le<std::uint16_t>(&page[28]) + get_le<std::uint16_t>(&page[32]) +
                              4 * get_le<std::uint16_t>(&page[34]) + (large ? 80 : 40);
        QCOMPARE(accounted, size);
        QVERIFY(!large || get_le<std::uint32_t>(&page[64]) == number);
        ++used;
    }
    QVERIFY(used > 40);
}

QTEST_GUILESS_MAIN(test_ese_checksum)
#include "test_ese_checksum.moc"
