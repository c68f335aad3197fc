// SPDX-License-Identifier: MIT
// A database in memory to be damaged, and the check of bytes as a caller feeds them.
#pragma once

#include "host/health/file_checker.h"
#include "host/health/page_view.h"
#include "samples/ese_bytes.h"
#include "samples/ese_checksum.h"
#include "samples/ese_writer.h"

#include <QFile>
#include <QTemporaryDir>

inline file_health checked(std::unique_ptr<file_checker> checker, const QByteArray& bytes, int chunk_size = 1 << 20) {
    for (int offset = 0; offset < bytes.size(); offset += chunk_size) {
        const QByteArray chunk = bytes.mid(offset, chunk_size); // a copy: what is read outside it shows
        checker->take(chunk.constData(), chunk.size());
    }
    return checker->finish();
}

// Tables "Other", "Container_3" (4000 rows, 40 long values, branch pages) and "Empty".
struct test_database {
    explicit test_database(std::uint32_t size) : page_size(static_cast<int>(size)) {
        const QTemporaryDir folder;
        QFile file(folder.filePath(QStringLiteral("test.edb")));
        ese_writer writer(QFile::encodeName(file.fileName()).constData(), size);
        const std::vector<ese_column> columns = {{0, "A", ese_type::signed_32, {}, 0},
                                                 {0, "B", ese_type::large_binary, {}, 0}};
        for (const auto& [name, rows] :
             {std::pair("Other", 5), std::pair("Container_3", 4000), std::pair("Empty", 0)}) {
            writer.begin_table(name, columns);
            for (int i = 0; i < rows; ++i) {
                const std::size_t bytes_of_value = rows > 5 && i % 100 == 0 ? 9000 : 380;
                writer.add_row({i, ese_value::bytes(std::string(bytes_of_value, static_cast<char>(i)))});
            }
            writer.end_table();
        }
        writer.close();
        bytes = file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    }

    static constexpr std::uint32_t other = 6; // object ids
    static constexpr std::uint32_t container = 8;
    static constexpr std::uint32_t long_values = 9;

    int page_count() const { return bytes.size() / page_size - 2; }
    int offset(quint32 page) const { return (static_cast<int>(page) + 1) * page_size; }
    char* at(quint32 page, int place = 0) { return bytes.data() + offset(page) + place; }
    std::string_view page(quint32 number) const {
        return {bytes.constData() + offset(number), static_cast<std::size_t>(page_size)};
    }
    std::uint32_t flags(quint32 number) const { return get_le<std::uint32_t>(page(number).data() + 36); }
    // Pages of a tree in the order of the file, those whose flags under the mask are these.
    QVector<quint32> pages(std::uint32_t object, std::uint32_t mask, std::uint32_t wanted) const {
        QVector<quint32> found;
        for (quint32 number = 1; number <= static_cast<quint32>(page_count()); ++number) {
            if (get_le<std::uint32_t>(page(number).data() + 24) == object && (flags(number) & mask) == wanted) {
                found.append(number);
            }
        }
        return found;
    }
    QVector<quint32> leaves(std::uint32_t object = container) const { return pages(object, 2, 2); }
    quint32 root(std::uint32_t object = container) const { return pages(object, 1, 1).value(0); }

    void flip(quint32 page, int place) { *at(page, place) = static_cast<char>(*at(page, place) ^ 0x10); }
    void zero(quint32 page) { bytes.replace(offset(page), page_size, QByteArray(page_size, '\0')); }
    // Right checksums after a change.
    void mend(quint32 number) {
        std::string mended(page(number));
        ese_set_page_checksums(mended, number);
        bytes.replace(offset(number), page_size, mended.data(), page_size);
    }
    // The data of an entry, to be changed in place.
    char* entry(quint32 number, int index) {
        return at(number, static_cast<int>(page_view(page(number)).entry_at(index)->data.data() - page(number).data()));
    }
    // The two bytes whose upper bits are the entry's flags.
    char* entry_flags(quint32 number, int index) {
        char* const tag = at(number, page_size - 4 * (index + 2));
        return page_size < 16384 ? tag + 2 : at(number, 80 + (get_le<std::uint16_t>(tag + 2) & 0x7FFF));
    }
    void delete_entry(quint32 number, int index) {
        char* const flags = entry_flags(number, index);
        put_le(flags, static_cast<std::uint16_t>(get_le<std::uint16_t>(flags) | 0x4000));
        mend(number);
    }
    void mend_header() {
        for (int copy = 0; copy < 2; ++copy) {
            const std::string header(bytes.constData() + copy * page_size, static_cast<std::size_t>(page_size));
            put_le(bytes.data() + copy * page_size, ese_header_checksum(header));
        }
    }

    int page_size;
    QByteArray bytes;
    quint32 damaged = 0; // for the test to remember
};
