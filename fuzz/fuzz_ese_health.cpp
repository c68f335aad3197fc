// SPDX-License-Identifier: MIT
// Any bytes as the catalog page and three more pages of a database, with right checksums or without: the check does no
// harm, finds the same whatever the chunks, and never counts more than there is room for.
#include "host/health/ese_page_sums.h"
#include "host/health/file_checker.h"

#include <QByteArray>
#include <QtEndian>

#include <cstdint>
#include <cstdlib>

namespace {

constexpr int page_count = 30;
constexpr int fuzzed_pages[] = {4, 25, 26, 27};

void put(char* at, quint32 number) {
    qToLittleEndian(number, at);
}

QByteArray database_with_header(quint32 page_size) {
    QByteArray file(static_cast<int>(page_size) * (page_count + 2), '\0');
    for (quint32 copy = 0; copy < 2; ++copy) {
        char* const header = file.data() + copy * page_size;
        put(header + 4, 0x89abcdef);
        put(header + 8, 0x620);
        put(header + 52, 3);
        put(header + 232, 0x14);
        put(header + 236, page_size);
        put(header, ese_header_sum({header, page_size}));
    }
    return file;
}

// Three quarters of the bytes at the page's start, where header and entries are, the rest at its end with the tags.
void fill_page(char* page, std::size_t page_size, const uint8_t* data, std::size_t size) {
    const std::size_t end = size / 4;
    std::copy(data, data + size - end, page);
    std::copy(data + size - end, data + size, page + page_size - end);
}

void mend_page(char* page, std::size_t page_size, quint32 number) {
    if (page_size < ese_first_large_page) {
        qToLittleEndian(ese_block_sum({page, page_size}, number, true), page);
        return;
    }
    const std::size_t quarter = page_size / 4;
    put(page + 64, number);
    for (std::size_t i = 4; i-- > 0;) {
        qToLittleEndian(ese_block_sum({page + i * quarter, quarter}, number, i == 0), page + (i == 0 ? 0 : 32 + 8 * i));
    }
}

file_health check(const QByteArray& file, qint64 chunk_size) {
    const auto checker = ese_database_checker();
    for (qint64 offset = 0; offset < file.size(); offset += chunk_size) {
        checker->take(file.constData() + offset, qMin(chunk_size, file.size() - offset));
    }
    return checker->finish();
}

QStringList told(const file_health& health) {
    QStringList all = health.problems + health.notes + QStringList(health.problem);
    for (const table_health& table : health.ese->tables) {
        all << table.name << QString::number(table.rows) << QString::number(table.rows_outside);
    }
    return all;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    if (size < 16) {
        return 0;
    }
    constexpr quint32 page_sizes[] = {2048, 4096, 16384, 2048};
    const quint32 page_size = page_sizes[data[0] & 3];
    QByteArray file = database_with_header(page_size);
    const std::size_t share = qMin<std::size_t>((size - 1) / 4, page_size);
    for (std::size_t i = 0; i < 4; ++i) {
        char* const page = file.data() + static_cast<std::size_t>(fuzzed_pages[i] + 1) * page_size;
        fill_page(page, page_size, data + 1 + i * share, share);
        if ((data[0] & 4) == 0) {
            mend_page(page, page_size, static_cast<quint32>(fuzzed_pages[i]));
        }
    }
    const file_health health = check(file, 1 << 20);
    if (!health.ese || told(health) != told(check(file, 5000)) ||
        health.ese->damaged.size() > health.ese->damaged_pages) {
        std::abort();
    }
    for (const table_health& table : health.ese->tables) {
        if (table.rows < 0 || table.rows + table.rows_outside > file.size() / 4) {
            std::abort();
        }
    }
    return 0;
}
