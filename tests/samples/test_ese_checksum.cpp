// SPDX-License-Identifier: MIT
// Checksums of ESE pages, and the numbers in the page headers of a written file: libesedb looks at none of them.
#include "samples/ese_bytes.h"
#include "samples/ese_checksum.h"
#include "tests/ese/ese_files.h"

#include <QtTest>

#include <random>

class test_ese_checksum : public QObject {
    Q_OBJECT

private Q_SLOTS:
    // The first page of a small empty tree, as Windows left it in two files that differ in the page size only.
    void known_pages() {
        for (const auto& [size, checksum] :
             {std::pair(4096U, "d459ec0092019201"), std::pair(8192U, "d449ec007e0181fe")}) {
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
            QCOMPARE(QByteArray::fromStdString(page).left(8).toHex(), QByteArray(checksum));
        }
    }

    // Every bit counts. Of large pages each quarter has one, and the first quarter's counts the other three.
    void made_up_pages() {
        std::mt19937 random(5);
        for (const auto& [size, checksums] :
             {std::pair(4096U, "5a498bf71011ef6e"), std::pair(8192U, "ace2f781715c715c"),
              std::pair(32768U, "a0496df4e458e458e2bedd7f9b299b299ea24b0bd583d58375ffccc11fa8e057")}) {
            std::string page(size, '\0');
            for (char& byte : page) {
                byte = static_cast<char>(random());
            }
            ese_set_page_checksums(page, 7);
            const QByteArray header = QByteArray::fromStdString(page);
            QCOMPARE((header.left(8) + header.mid(40, size > 8192 ? 24 : 0)).toHex(), QByteArray(checksums));
        }
    }

    void written_file() {
        std::vector<ese_row> rows;
        for (unsigned i = 0; i < 3000; ++i) {
            rows.push_back({i, std::string(i % 100 == 0 ? 9000 : 500, 'x')});
        }
        const QTemporaryDir folder;
        QFile file(folder.filePath(QStringLiteral("test.edb")));
        for (const std::uint32_t size : {4096U, 8192U, 32768U}) {
            const bool large = size > 8192;
            write_ese(file.fileName(),
                      {{"T", {test_column("A", ese_type::signed_32), test_column("B", ese_type::large_text)}, rows}},
                      size);
            QVERIFY(file.open(QIODevice::ReadOnly) && file.seek(2 * size));
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
                QCOMPARE(get_le<std::uint16_t>(&page[28]) + get_le<std::uint16_t>(&page[32]) +
                             4U * get_le<std::uint16_t>(&page[34]) + (large ? 80 : 40),
                         size);
                QVERIFY(!large || get_le<std::uint32_t>(&page[64]) == number);
                ++used;
            }
            QVERIFY(used > 40);
            file.close();
        }
    }
};

QTEST_GUILESS_MAIN(test_ese_checksum)
#include "test_ese_checksum.moc"
