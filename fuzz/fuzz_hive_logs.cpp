// SPDX-License-Identifier: MIT
// Any logs are applied to any hive without harm: memory stays in proportion, a consistent hive stays one, what was not
// applied leaves no trace. An input is a byte of flags, the lengths of two logs in two bytes each, the logs, the hive.
#include "host/health/file_checker.h"
#include "host/intake/hive_base_block.h"
#include "host/intake/hive_logs.h"
#include "samples/hive_log_writer.h"

#include <cstdint>
#include <cstdlib>

namespace {

void require(bool holds) {
    if (!holds) {
        std::abort();
    }
}

bool is_consistent(const QByteArray& hive) {
    const auto checker = registry_hive_checker();
    checker->take(hive.constData(), hive.size());
    return checker->finish().problem.isEmpty();
}

// With the flag set the checksum and hashes are made right, so that what lies behind them is reached.
QByteArray part(const QByteArray& bytes, bool is_sealed) {
    return is_sealed && bytes.size() >= hive_format::page_size ? hive_log::sealed(bytes) : bytes;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    constexpr int head = 5;
    const QByteArray input(reinterpret_cast<const char*>(data), static_cast<int>(size));
    const int flags = hive_number<quint8>(input, 0);
    const int first = hive_number<quint16>(input, 1);
    const int second = hive_number<quint16>(input, 3);
    const QByteArray log1 = part(input.mid(head, first), (flags & 1) != 0);
    const QByteArray log2 = part(input.mid(head + first, second), (flags & 2) != 0);
    const QByteArray hive = part(input.mid(head + first + second), (flags & 4) != 0);

    const hive_replay replay = apply_hive_logs(hive, log1, log2);
    const int newer = entries_newer_than_hive(hive, log1) + entries_newer_than_hive(hive, log2);
    require(replay.hive.size() <= hive.size() + log1.size() + log2.size() + 2 * hive_format::bin_unit);
    require(replay.entries <= newer);
    if (replay.is_applied()) {
        require(replay.is_unfinished && base_block_of(replay.hive).is_finished());
        require(is_consistent(replay.hive) || !is_consistent(hive));
    } else {
        require(replay.hive == hive && replay.entries == 0 && !replay.base_block_recovered);
    }
    return 0;
}
