// SPDX-License-Identifier: MIT
// Checksums of ESE files: known ones, and those of every page that the writer puts into a file.
#include "evidence/ese_bytes.h"
#include "evidence/ese_checksum.h"
#include "tests/evidence/ese_example.h"

#include <QFile>
#include <QtTest>

class test_ese_checksum : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void known_pages();
    void known_quarters();
    void changed_bit_gives_its_position();
    void written_file();
};

// The first page of a small empty tree, as Windows left it in two files that differ in the page size only.
void test_ese_checksum::known_pages() {
    for (const auto& [size, checksum] : {std::pair(4096U, "d459ec0092019201"), std::pair(8192U, "d449ec007e0181fe")}) {
        std::string page(size, '\0');
        page[8] = 0x46;
        page[24] = 1;
        put_le(&page[28], static_cast<std::uint16_t>(size - 0x4A));
        page[32] = 0x1A;
        page[34] = 2;
        put_le<std::uint16_t>(&page[36], 0xA823);
        page.replace(56, 7, std::string("\x04\0\0\0\0\xFE\xFE", 7));
        page.replace(size - 8, 8, std::string("\x0A\0\x10\0\x10\0\0\0", 8));
        ese_set_page_checksums(page, 2);
        QCOMPARE(array(page).left(8).toHex(), QByteArray(checksum));
    }
}

void test_ese_checksum::known_quarters() {
    std::string page(32768, '\0');
    page[16384 + 8188] = 0x10;
    ese_set_page_checksums(page, 1);
    QCOMPARE(array(page).mid(40, 24).toHex(), QByteArray("010000000000000011000000e4ff1b000100000000000000"));
    // The first quarter contains the other three, and leaves itself out.
    const std::string before = page;
    ese_set_page_checksums(page, 1);
    QCOMPARE(array(page), array(before));
}

// A changed bit changes the upper half of the result by its position in the block and by the complement of that, which
// is how readers find it. Every seventh bit comes to all places of a word.
void test_ese_checksum::changed_bit_gives_its_position() {
    for (const std::size_t block : {4096U, 8192U}) {
        const auto last = static_cast<std::uint32_t>(block * 8 - 1);
        const std::string data = pattern(block, 5);
        const auto good = ese_block_checksum(data.data(), block, 7, false);
        for (std::uint32_t bit = 0; bit <= last; bit += 7) {
            std::string changed = data;
            changed[bit / 8] = static_cast<char>(changed[bit / 8] ^ (1 << bit % 8));
            const auto change = (ese_block_checksum(changed.data(), block, 7, false) ^ good) >> 32;
            QCOMPARE(static_cast<std::uint32_t>(change), (last ^ bit) << 16 | bit);
        }
    }
}

void test_ese_checksum::written_file() {
    const example_file example;
    std::vector<ese_row> rows;
    for (unsigned i = 0; i < 3000; ++i) {
        rows.push_back({i, ese_value::bytes(pattern(i % 100 == 0 ? 9000 : 500, i))});
    }
    for (const auto size : page_sizes) {
        example.write(size, {column(1, ese_type::signed_32), column(256, ese_type::large_binary)}, rows);
        QFile file(example.path());
        QVERIFY(file.open(QIODevice::ReadOnly));
        const std::string header = file.read(size).toStdString();
        QCOMPARE(get_le<std::uint32_t>(header.data()), ese_header_checksum(header));
        QCOMPARE(file.read(size), array(header));
        int used = 0;
        for (std::uint32_t number = 1; !file.atEnd(); ++number) {
            const std::string page = file.read(size).toStdString();
            if (page == std::string(size, '\0')) {
                QVERIFY(number < 25); // only the reserved pages at the start are unused
                continue;
            }
            std::string summed = page;
            ese_set_page_checksums(summed, number);
            QVERIFY(page.size() == size && summed == page);
            // Free bytes, used bytes, header and tags make up the page.
            const bool large = size > 8192;
            QCOMPARE(get_le<std::uint16_t>(&page[28]) + get_le<std::uint16_t>(&page[32]) +
                         4U * get_le<std::uint16_t>(&page[34]) + (large ? 80 : 40),
                     size);
            QVERIFY(!large || get_le<std::uint32_t>(&page[64]) == number);
            ++used;
        }
        QVERIFY(used > 40);
    }
}

QTEST_GUILESS_MAIN(test_ese_checksum)
#include "test_ese_checksum.moc"
