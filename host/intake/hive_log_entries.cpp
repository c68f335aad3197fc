// SPDX-License-Identifier: MIT
// An entry: 40 bytes of sizes and hashes, references {offset in the bins, size}, the pages in the same order.
#include "host/intake/hive_log_entries.h"

#include "host/intake/marvin_hash.h"

#include <algorithm>

namespace {

constexpr qint64 fixed_size = 40;
constexpr qint64 hashed_by_second = 32; // bytes from the start; the first hash covers what follows the fixed part
constexpr qint64 reference_size = 8;
constexpr quint64 hash_seed = 0x82ef4d887a4e55c5;

constexpr qint64 at_size = 4;
constexpr qint64 at_sequence = 12;
constexpr qint64 at_bins_size = 16;
constexpr qint64 at_pages = 20;
constexpr qint64 at_first_hash = 24;
constexpr qint64 at_second_hash = 32;

bool has_signature(const QByteArray& log, qint64 offset) {
    constexpr quint32 signature = 0x454c7648; // "HvLE"
    return hive_number<quint32>(log, offset) == signature;
}

// The entry lies inside the log, and the bins have a possible size.
bool has_possible_sizes(const QByteArray& log, qint64 offset) {
    const qint64 size = hive_number<quint32>(log, offset + at_size);
    const qint64 bins_size = hive_number<quint32>(log, offset + at_bins_size);
    return size >= fixed_size && size % hive_format::page_size == 0 && size <= log.size() - offset && bins_size > 0 &&
           bins_size % hive_format::bin_unit == 0 && bins_size <= hive_format::largest_bins;
}

bool has_right_hashes(const QByteArray& log, qint64 offset) {
    const char* const entry = log.constData() + offset;
    const qint64 size = hive_number<quint32>(log, offset + at_size);
    return marvin_hash::of(entry, hashed_by_second, hash_seed) == hive_number<quint64>(log, offset + at_second_hash) &&
           marvin_hash::of(entry + fixed_size, size - fixed_size, hash_seed) ==
               hive_number<quint64>(log, offset + at_first_hash);
}

// The bytes of all pages; -1: one lies outside the bins, or the entry has not as many.
qint64 bytes_of_pages(const QByteArray& log, qint64 offset) {
    const qint64 bins_size = hive_number<quint32>(log, offset + at_bins_size);
    const qint64 pages = hive_number<quint32>(log, offset + at_pages);
    // Below 0 when there are more references than fit; then the first page is already one too many.
    const qint64 room = hive_number<quint32>(log, offset + at_size) - fixed_size - pages * reference_size;
    qint64 bytes = 0;
    for (qint64 page = 0; page < pages; ++page) {
        const qint64 reference = offset + fixed_size + page * reference_size;
        const qint64 size = hive_number<quint32>(log, reference + 4);
        bytes += size;
        if (hive_number<quint32>(log, reference) + size > bins_size || bytes > room) {
            return -1;
        }
    }
    return bytes;
}

// Whether the entry at the offset is the one that comes next. An older one is a remnant of what the log held before.
bool is_next(hive_entry_log& read, quint32 sequence) {
    const bool is_first = read.entries.isEmpty();
    read.next = is_first ? qint64{sequence} : qint64{read.entries.last().sequence} + 1;
    if (sequence > read.next) {
        read.damage = QStringLiteral("its entry %1 is missing").arg(read.next);
    }
    return sequence == read.next && (!is_first || sequence >= read.base_block.primary);
}

} // namespace

hive_entry_log read_entry_log(const QByteArray& log) {
    hive_entry_log read;
    read.base_block = base_block_of(log);
    const hive_base_block& block = read.base_block;
    if (!block.is_sound || block.type != hive_file_type::entry_log || !block.has_possible_sizes()) {
        return read;
    }
    qint64 offset = block.sector_size;
    while (has_signature(log, offset) && is_next(read, hive_number<quint32>(log, offset + at_sequence))) {
        const qint64 page_bytes = has_possible_sizes(log, offset) ? bytes_of_pages(log, offset) : -1;
        if (page_bytes < 0 || !has_right_hashes(log, offset)) {
            read.damage = QStringLiteral("its entry %1 is damaged or cut off").arg(read.next);
            return read;
        }
        read.entries.append({offset, static_cast<quint32>(read.next), hive_number<quint32>(log, offset + at_pages),
                             hive_number<quint32>(log, offset + at_bins_size), page_bytes});
        offset += hive_number<quint32>(log, offset + at_size);
    }
    return read;
}

void keep_newer_entries(hive_entry_log& read, const hive_base_block& hive) {
    const quint32 first = hive.is_sound ? hive.secondary : 0;
    const auto newer = std::find_if(read.entries.begin(), read.entries.end(),
                                    [first](const hive_log_entry& entry) { return entry.sequence >= first; });
    read.entries.erase(read.entries.begin(), newer);
}

void put_entry_pages(QByteArray& hive, const QByteArray& log, const hive_log_entry& entry) {
    const qint64 references = entry.offset + fixed_size;
    const char* content = log.constData() + references + entry.pages * reference_size;
    for (qint64 page = 0; page < entry.pages; ++page) {
        const qint64 target = hive_number<quint32>(log, references + page * reference_size);
        const qint64 size = hive_number<quint32>(log, references + page * reference_size + 4);
        std::copy_n(content, size, hive.data() + hive_format::header_size + target);
        content += size;
    }
}
