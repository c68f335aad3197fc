// SPDX-License-Identifier: MIT
// The base block: the first sector of a registry hive, and of each of its transaction logs. All numbers of a hive are
// little-endian; its bins begin behind the first 4096 bytes.
#pragma once

#include <QByteArray>
#include <QtEndian>

namespace hive_format {
constexpr qint64 header_size = 4096;                      // in front of the bins
constexpr qint64 bin_unit = 4096;                         // sizes of bins are multiples of it
constexpr qint64 page_size = 512;                         // unit of the logs
constexpr qint64 largest_bins = 0x7fff0000 - header_size; // what a byte array holds

constexpr qint64 round_up(qint64 size, qint64 unit) {
    return (size + unit - 1) / unit * unit;
}
} // namespace hive_format

// The number at an offset of any bytes; 0 when it does not lie wholly inside.
template <class Number>
Number hive_number(const QByteArray& bytes, qint64 offset) {
    const bool is_inside = offset >= 0 && offset <= bytes.size() - static_cast<qint64>(sizeof(Number));
    return is_inside ? qFromLittleEndian<Number>(bytes.constData() + offset) : Number{0};
}

enum class hive_file_type : quint32 { hive = 0, first_dirty_log = 1, second_dirty_log = 2, entry_log = 6 };

struct hive_base_block {
    bool is_sound = false; // signature and checksum are right; the other fields are what the bytes say in any case
    quint32 primary = 0;   // the two sequence numbers
    quint32 secondary = 0;
    quint64 time = 0; // last written, FILETIME
    hive_file_type type = hive_file_type::hive;
    qint64 bins_size = 0;
    qint64 sector_size = 0;

    // The hive or log was written to its end.
    bool is_finished() const { return is_sound && primary == secondary; }
    // A sector that exists, and bins that are possible: what the reading of a log builds on.
    bool has_possible_sizes() const;
};

// The base block of a hive or log; one that is too short has none that is sound.
hive_base_block base_block_of(const QByteArray& file);

// Makes the base block that of a finished hive: both sequence numbers, size of the bins, type and checksum. The hive
// has at least the bytes in front of its bins.
void finish_base_block(QByteArray& hive, quint32 sequence, qint64 bins_size);
