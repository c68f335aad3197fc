// SPDX-License-Identifier: MIT
// A log begins with a copy of the hive's header. Behind it the newer kind has numbered entries, the older one a list of
// changed sectors with their content.
#include "host/health/hive_log_state.h"

#include "host/health/bytes.h"

namespace {

constexpr int sector = 512;
constexpr quint32 old_log = 1;
constexpr quint32 old_second_log = 2;
constexpr quint32 new_log = 6;

struct base_block {
    bool is_sound = false;
    quint32 primary = 0;
    quint32 secondary = 0;
    quint64 written = 0;
    quint32 type = 0;
    qint64 first_sector = sector; // bytes
};

// The checksum is never all ones or 0.
quint32 checksum_of(std::string_view block) {
    const quint32 sum = xor_of_words(part_of(block, 0, 508), 0);
    return sum == 0xffffffff ? 0xfffffffe : qMax(sum, 1U);
}

base_block read_base_block(std::string_view bytes) {
    base_block block;
    block.is_sound = bytes.size() >= sector && part_of(bytes, 0, 4) == "regf" &&
                     checksum_of(bytes) == number_at<quint32>(bytes, 508);
    block.primary = number_at<quint32>(bytes, 4);
    block.secondary = number_at<quint32>(bytes, 8);
    block.written = number_at<quint64>(bytes, 12);
    block.type = number_at<quint32>(bytes, 28);
    block.first_sector = qint64{sector} * qBound(1U, number_at<quint32>(bytes, 44), 8U);
    return block;
}

// Entries from the hive's number on, each one more than the one before; older ones may stand before and behind them.
void count_entries(const base_block& hive, const base_block& log, const byte_reader& read, qint64 size,
                   hive_log_state& state) {
    constexpr int entry_header = 40;
    const quint32 first_wanted = hive.is_sound ? qMax(log.primary, hive.secondary) : log.primary;
    qint64 offset = log.first_sector;
    while (offset + entry_header <= size) {
        const QByteArray bytes = read(offset, entry_header);
        const std::string_view entry(bytes.constData(), static_cast<std::size_t>(bytes.size()));
        const qint64 entry_size = number_at<quint32>(entry, 4);
        const quint32 number = number_at<quint32>(entry, 12);
        const bool is_entry = part_of(entry, 0, 4) == "HvLE" && entry_size >= sector && entry_size % sector == 0 &&
                              offset + entry_size <= size;
        const bool is_gap = state.newer_entries != 0 && number != state.last_entry + 1;
        if (!is_entry || is_gap) {
            return;
        }
        if (number >= first_wanted) {
            state.first_entry = state.newer_entries == 0 ? number : state.first_entry;
            state.last_entry = number;
            ++state.newer_entries;
        }
        offset += entry_size;
    }
}

bool is_old_log_newer(const base_block& hive, const base_block& log, const byte_reader& read) {
    const bool fits = log.primary == log.secondary && (!hive.is_sound || log.written == hive.written);
    return fits && read(log.first_sector, 4) == "DIRT";
}

} // namespace

hive_log_state judge_hive_log(std::string_view hive_header, const byte_reader& log, qint64 log_size) {
    const QByteArray first_sector = log(0, sector);
    const base_block hive = read_base_block(hive_header);
    const base_block block = read_base_block({first_sector.constData(), static_cast<std::size_t>(first_sector.size())});
    const bool is_old = block.type == old_log || block.type == old_second_log;
    hive_log_state state;
    state.is_sound = block.is_sound && (is_old || block.type == new_log);
    if (!state.is_sound || (hive.is_sound && hive.primary == hive.secondary)) {
        return state;
    }
    if (!is_old) {
        count_entries(hive, block, log, log_size, state);
    } else if (is_old_log_newer(hive, block, log)) {
        state.newer_entries = 1;
        state.first_entry = state.last_entry = block.primary;
    }
    return state;
}
