// SPDX-License-Identifier: MIT
// Windows' count of time: 100 ns since 1601-01-01 UTC.
#pragma once

#include <QtGlobal>

namespace filetime {

constexpr qint64 ticks_before_1970 = 116444736000000000;
constexpr qint64 ticks_per_second = 10000000;

} // namespace filetime
