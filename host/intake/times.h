// SPDX-License-Identifier: MIT
// Windows' times out of what the libraries and the system tell.
#pragma once

#include "common/filetime.h"

#include <QByteArray>
#include <QtEndian>

#include <ctime>
#include <optional>

namespace intake {

// Seconds since 1970 and a part of a second; no value when Windows cannot count them.
inline std::optional<qint64> ticks_of(qint64 seconds, qint64 nanoseconds) {
    qint64 ticks = 0;
    constexpr qint64 nanoseconds_per_tick = 100;
    const bool counted = !__builtin_mul_overflow(seconds, filetime::ticks_per_second, &ticks) &&
                         !__builtin_add_overflow(ticks, filetime::ticks_before_1970, &ticks) &&
                         !__builtin_add_overflow(ticks, nanoseconds / nanoseconds_per_tick, &ticks) && ticks > 0;
    return counted ? std::optional(ticks) : std::nullopt;
}

// The attribute by which ntfs-3g tells a creation time: eight bytes, the highest first.
inline std::optional<qint64> ticks_of_attribute(const QByteArray& value) {
    const qint64 ticks = value.size() == 8 ? qFromBigEndian<qint64>(value.constData()) : 0;
    return ticks > 0 ? std::optional(ticks) : std::nullopt;
}

inline timespec timespec_of(qint64 ticks) {
    const qint64 since_1970 = ticks - filetime::ticks_before_1970;
    const qint64 rest = since_1970 % filetime::ticks_per_second;
    const qint64 positive = rest < 0 ? rest + filetime::ticks_per_second : rest;
    return {(since_1970 - positive) / filetime::ticks_per_second, positive * 100};
}

} // namespace intake
