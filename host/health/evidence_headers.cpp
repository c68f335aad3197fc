// SPDX-License-Identifier: MIT
// The conditions under which libesedb and hivex refuse a file, and one more: hivex reads a hive that ends early at the
// end of a block as if it were whole.
#include "host/health/evidence_headers.h"

#include <QtEndian>

namespace {

header_verdict problem(const char* text) {
    return {QLatin1String(text), {}};
}

quint32 number_at(const QByteArray& bytes, int offset) {
    return qFromLittleEndian<quint32>(bytes.constData() + offset);
}

// The words of [begin, end) combined by exclusive or.
quint32 xor_of_words(const QByteArray& bytes, int begin, int end, quint32 start) {
    for (int offset = begin; offset < end; offset += 4) {
        start ^= number_at(bytes, offset);
    }
    return start;
}

constexpr quint32 ese_signature = 0x89abcdef;
constexpr int ese_header_size = 668; // what the checksum covers

bool is_sound_ese_header(const QByteArray& header) {
    return header.size() == ese_header_size && number_at(header, 4) == ese_signature &&
           xor_of_words(header, 4, ese_header_size, ese_signature) == number_at(header, 0);
}

constexpr int hive_header_size = 0x1000;
constexpr int block_header_size = 0x20;

// A block of a hive is a chain of cells that ends exactly where the block does.
bool is_sound_block(const QByteArray& block) {
    qint64 offset = block_header_size;
    while (offset + 4 <= block.size()) {
        const qint64 length = qAbs(qint64(static_cast<qint32>(number_at(block, static_cast<int>(offset)))));
        if (length <= 4 || length % 4 != 0) {
            return false;
        }
        offset += length;
    }
    return offset == block.size();
}

// The blocks follow each other from the header to the length that the header tells.
bool are_sound_blocks(const byte_reader& read, qint64 offset, qint64 end, qint64 file_size) {
    constexpr qint64 largest =
        qint64{64} * 1024 * 1024; // a block holds a few pages; more memory than this is not given to one
    while (offset < end && offset < file_size) {
        const QByteArray header = read(offset, block_header_size);
        if (header.size() < block_header_size || !header.startsWith("hbin") ||
            number_at(header, 4) != offset - hive_header_size) {
            return false;
        }
        const qint64 size = number_at(header, 8);
        const bool possible = size > block_header_size && size % hive_header_size == 0 && offset + size <= file_size;
        if (!possible || (size <= largest && !is_sound_block(read(offset, size)))) {
            return false;
        }
        offset += size;
    }
    return offset >= end;
}

} // namespace

header_verdict judge_ese_database(const byte_reader& read, qint64 file_size) {
    const QByteArray header = read(0, ese_header_size);
    if (file_size == 0) {
        return problem("it is empty");
    }
    if (header.size() < 8 || number_at(header, 4) != ese_signature) {
        return problem("it is not an ESE database");
    }
    if (!is_sound_ese_header(header)) {
        return problem("the header of the ESE database is damaged");
    }
    if (number_at(header, 8) != 0x620) {
        return problem("the format version of the ESE database is not known");
    }
    const quint32 page_size = number_at(header, 236);
    if (page_size < 2048 || page_size > 32768 || (page_size & (page_size - 1)) != 0) {
        return problem("the page size of the ESE database is not possible");
    }
    if (!is_sound_ese_header(read(page_size, ese_header_size))) {
        return problem("the copy of the header of the ESE database is damaged");
    }
    constexpr int fixed_pages = 26; // two headers and pages 1 to 24, which hold the catalog and its copy
    if (file_size < qint64(fixed_pages) * page_size) {
        return problem("the ESE database is cut off");
    }
    constexpr quint32 dirty_shutdown = 2;
    if (number_at(header, 52) == dirty_shutdown) {
        return {{}, QStringLiteral("the ESE database was not shut down cleanly; its transaction logs are not applied")};
    }
    return {};
}

header_verdict judge_registry_hive(const byte_reader& read, qint64 file_size) {
    constexpr int checked = 512; // the checksum lies at 508
    const QByteArray header = read(0, checked);
    if (file_size == 0) {
        return problem("it is empty");
    }
    if (!header.startsWith("regf")) {
        return problem("it is not a registry hive");
    }
    if (file_size < 0x2000 || header.size() < checked) {
        return problem("the registry hive is cut off");
    }
    if (number_at(header, 20) != 1) {
        return problem("the format version of the registry hive is not known");
    }
    if (xor_of_words(header, 0, 508, 0) != number_at(header, 508)) {
        return problem("the header of the registry hive is damaged");
    }
    if (!are_sound_blocks(read, hive_header_size, qint64(hive_header_size) + number_at(header, 40), file_size)) {
        return problem("a block of the registry hive is damaged or missing");
    }
    if (read(qint64(hive_header_size) + number_at(header, 36) + 4, 2) != "nk") {
        return problem("the root key of the registry hive is damaged");
    }
    if (number_at(header, 4) != number_at(header, 8)) {
        return {{}, QStringLiteral("the registry hive has unfinished writes; its .LOG1 and .LOG2 are not applied")};
    }
    return {};
}
