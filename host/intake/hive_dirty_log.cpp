// SPDX-License-Identifier: MIT
// Behind the base block's sector come "DIRT" and the map, and from the next sector on the pages without gaps.
#include "host/intake/hive_dirty_log.h"

#include <QtAlgorithms>

#include <algorithm>

namespace {

using hive_format::bin_unit;
using hive_format::header_size;
using hive_format::page_size;

constexpr quint32 map_signature = 0x54524944; // "DIRT"
constexpr quint32 bin_signature = 0x6e696268; // "hbin"

qint64 pages_of_map(const QByteArray& log, qint64 map, qint64 map_size) {
    qint64 pages = 0;
    for (qint64 at = map; at < map + map_size; ++at) {
        pages += qPopulationCount(hive_number<quint8>(log, at));
    }
    return pages;
}

bool is_dirty(const QByteArray& log, const hive_dirty_log& read, qint64 page) {
    return (hive_number<quint8>(log, read.map + page / 8) >> (page % 8) & 1) != 0;
}

// The size of the bin whose header stands at an offset of the bytes; 0: it is not the header of the bin at this place.
qint64 size_of_bin(const QByteArray& bytes, qint64 offset, qint64 bin, qint64 bins_size) {
    const qint64 size = hive_number<quint32>(bytes, offset + 8);
    const bool is_bin = hive_number<quint32>(bytes, offset) == bin_signature &&
                        hive_number<quint32>(bytes, offset + 4) == bin && size <= bins_size - bin;
    return is_bin && size % bin_unit == 0 ? size : 0;
}

} // namespace

hive_dirty_log read_dirty_log(const QByteArray& log) {
    hive_dirty_log read;
    read.base_block = base_block_of(log);
    const hive_base_block& block = read.base_block;
    const bool is_dirty_log =
        block.type == hive_file_type::first_dirty_log || block.type == hive_file_type::second_dirty_log;
    if (!is_dirty_log || !block.is_finished() || !block.has_possible_sizes()) {
        read.problem = QStringLiteral("it is not a finished log");
        return read;
    }
    constexpr qint64 signature_size = 4;
    const qint64 map_size = block.bins_size / page_size / 8;
    read.map = block.sector_size + signature_size;
    read.content = hive_format::round_up(read.map + map_size, block.sector_size);
    read.pages = pages_of_map(log, read.map, qMin(map_size, log.size() - read.map));
    if (hive_number<quint32>(log, block.sector_size) != map_signature) {
        read.problem = QStringLiteral("the map of its pages is damaged");
    } else if (read.content + read.pages * page_size > log.size()) {
        read.problem = QStringLiteral("it is cut off");
    }
    return read;
}

bool is_log_of_hive(const hive_dirty_log& read, const QByteArray& hive) {
    constexpr qint64 at_time_of_bin = header_size + 20;
    const hive_base_block block = base_block_of(hive);
    const quint64 time = block.is_sound ? block.time : hive_number<quint64>(hive, at_time_of_bin);
    return time == read.base_block.time;
}

qint64 put_dirty_pages(QByteArray& hive, const QByteArray& log, const hive_dirty_log& read) {
    const qint64 bins_size = read.base_block.bins_size;
    qint64 applied = 0;
    qint64 next_bin = 0;
    for (qint64 at = 0; at < bins_size; at += page_size) {
        const bool is_changed = is_dirty(log, read, at / page_size);
        const qint64 page = read.content + applied * page_size;
        if (at == next_bin) {
            const qint64 size =
                is_changed ? size_of_bin(log, page, at, bins_size) : size_of_bin(hive, header_size + at, at, bins_size);
            if (size == 0) {
                return applied;
            }
            next_bin += size;
        }
        if (is_changed) {
            std::copy_n(log.constData() + page, page_size, hive.data() + header_size + at);
            ++applied;
        }
    }
    return applied;
}
