// SPDX-License-Identifier: MIT
// Checksums of pages: values that Windows left, and the writer's own computing of the same sums.
#include "checked_file.h"
#include "host/health/ese_page_sums.h"

#include <QtTest>

#include <random>

class test_ese_page_sums : public QObject {
    Q_OBJECT

    std::mt19937 random{7};

    // Random bytes that say which kind of checksum they have.
    std::string made_up_page(std::size_t size, bool is_old) {
        std::string page(size, '\0');
        for (char& byte : page) {
            byte = static_cast<char>(random());
        }
        page[37] = static_cast<char>((page[37] & ~0x20) | (is_old ? 0 : 0x20));
        return page;
    }

private Q_SLOTS:
    void known_sums() {
        std::string quarter(8192, '\0');
        QCOMPARE(ese_block_sum(quarter, 1, false), quint64{1});
        quarter[8188] = 0x10;
        QCOMPARE(ese_block_sum(quarter, 1, false), quint64{0x001bffe400000011});
        // The first page of a small empty tree, as Windows left it in two files that differ in the page size only.
        for (const auto& [size, sum] : {std::pair(4096U, "d459ec0092019201"), std::pair(8192U, "d449ec007e0181fe")}) {
            std::string page(size, '\0');
            page.replace(0, 8, QByteArray::fromHex(sum).toStdString());
            page[8] = 0x46;
            page[24] = 1;
            put_le(&page[28], static_cast<std::uint16_t>(size - 0x4A));
            page[32] = 0x1A;
            page[34] = 2;
            put_le<std::uint16_t>(&page[36], 0xA823);
            page.replace(56, 7, std::string("\x04\0\0\0\0\xFE\xFE", 7));
            page.replace(size - 8, 8, std::string("\x0A\0\x10\0\x10\0\0\0", 8));
            QCOMPARE(judge_ese_page_sum(page, 2), ese_page_sum::right);
            QCOMPARE(judge_ese_page_sum(page, 3), ese_page_sum::wrong);
        }
    }

    // Made by the writer, which counts group by group; here the block is folded.
    void sums_of_the_writer_and_single_bits_data() {
        QTest::addColumn<unsigned>("size");
        for (const unsigned size : {4096U, 8192U, 16384U, 32768U}) {
            QTest::addRow("%u", size) << size;
        }
    }
    void sums_of_the_writer_and_single_bits() {
        QFETCH(unsigned, size);
        constexpr std::uint32_t number = 0x00a5c3;
        std::string page = made_up_page(size, false);
        if (size >= 16384) {
            put_le(&page[64], number);
        }
        ese_set_page_checksums(page, number);
        QCOMPARE(judge_ese_page_sum(page, number), ese_page_sum::right);
        QCOMPARE(judge_ese_page_sum(page, number + 1),
                 size < 16384 ? ese_page_sum::wrong : ese_page_sum::of_another_page);
        for (unsigned bit = 0; bit < size * 8; bit += 61) { // every place within a word, a group and a quarter
            std::string changed = page;
            changed[bit / 8] = static_cast<char>(changed[bit / 8] ^ (1 << bit % 8));
            QVERIFY2(judge_ese_page_sum(changed, number) == ese_page_sum::wrong, QByteArray::number(bit).constData());
        }
    }

    // Before the error correcting ones: an exclusive or of the words, and the page's number behind it.
    void sums_of_the_old_kind() {
        for (const std::size_t size : {2048U, 4096U, 8192U}) {
            std::string page = made_up_page(size, true);
            put_le<std::uint32_t>(&page[4], 300);
            put_le(&page[0], ese_header_checksum(page));
            QCOMPARE(judge_ese_page_sum(page, 300), ese_page_sum::right);
            QCOMPARE(judge_ese_page_sum(page, 301), ese_page_sum::of_another_page);
            page[size - 1] = static_cast<char>(page[size - 1] ^ 1);
            QCOMPARE(judge_ese_page_sum(page, 300), ese_page_sum::wrong);
            put_le<std::uint32_t>(&page[4], 0);
            put_le(&page[0], ese_header_checksum(page));
            QCOMPARE(judge_ese_page_sum(page, 300), ese_page_sum::wrong);
        }
    }
};

QTEST_GUILESS_MAIN(test_ese_page_sums)
#include "test_ese_page_sums.moc"
