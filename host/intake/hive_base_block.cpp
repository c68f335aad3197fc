// SPDX-License-Identifier: MIT
// Offsets and the checksum of the base block.
#include "host/intake/hive_base_block.h"

namespace {

constexpr int at_primary = 4;
constexpr int at_secondary = 8;
constexpr int at_time = 12;
constexpr int at_type = 28;
constexpr int at_bins_size = 40;
constexpr int at_clustering = 44; // bytes of a sector, divided by 512
constexpr int at_checksum = 508;

quint32 checksum_of(const QByteArray& file) {
    quint32 checksum = 0;
    for (int offset = 0; offset < at_checksum; offset += static_cast<int>(sizeof(checksum))) {
        checksum ^= hive_number<quint32>(file, offset);
    }
    if (checksum == 0xffffffff) {
        return 0xfffffffe;
    }
    return checksum == 0 ? 1 : checksum;
}

} // namespace

bool hive_base_block::has_possible_sizes() const {
    const bool has_bins =
        bins_size > 0 && bins_size <= hive_format::largest_bins && bins_size % hive_format::bin_unit == 0;
    return has_bins && sector_size >= hive_format::page_size && sector_size <= hive_format::header_size;
}

hive_base_block base_block_of(const QByteArray& file) {
    hive_base_block block;
    block.is_sound = file.size() >= hive_format::page_size && file.startsWith("regf") &&
                     checksum_of(file) == hive_number<quint32>(file, at_checksum);
    block.primary = hive_number<quint32>(file, at_primary);
    block.secondary = hive_number<quint32>(file, at_secondary);
    block.time = hive_number<quint64>(file, at_time);
    block.type = static_cast<hive_file_type>(hive_number<quint32>(file, at_type));
    block.bins_size = hive_number<quint32>(file, at_bins_size);
    block.sector_size = hive_number<quint32>(file, at_clustering) * hive_format::page_size;
    return block;
}

void finish_base_block(QByteArray& hive, quint32 sequence, qint64 bins_size) {
    const auto put = [&hive](int offset, quint32 value) { qToLittleEndian(value, hive.data() + offset); };
    put(at_primary, sequence);
    put(at_secondary, sequence);
    put(at_type, static_cast<quint32>(hive_file_type::hive));
    put(at_bins_size, static_cast<quint32>(bins_size));
    put(at_checksum, checksum_of(hive));
}
