// SPDX-License-Identifier: MIT
// Growth of a hive's bytes and its notes.
#include "host/intake/hive_log_replay.h"

#include <algorithm>

void add_note(hive_replay& replay, const named_log& log, const QString& text) {
    replay.notes.append(QStringLiteral("%1: %2").arg(log.name, text));
}

bool is_possible_growth(const QByteArray& hive, qint64 bins_size, qint64 page_bytes) {
    using namespace hive_format;
    return header_size + bins_size <= round_up(hive.size(), bin_unit) + round_up(page_bytes, bin_unit);
}

void make_room(QByteArray& hive, qint64 bins_size) {
    const int before = hive.size();
    const int size = static_cast<int>(hive_format::header_size + bins_size);
    if (size > before) {
        hive.reserve(size); // resizing alone would take up to twice as much
        hive.resize(size);
        std::fill(hive.begin() + before, hive.end(), '\0');
    }
}

void put_base_block(QByteArray& hive, const QByteArray& log, const hive_base_block& block) {
    std::copy_n(log.constData(), qMin(block.sector_size, static_cast<qint64>(log.size())), hive.data());
}
