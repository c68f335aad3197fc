// SPDX-License-Identifier: MIT
// Unix seconds as ISO 8601 text: the one place where the exports decide what is a time and how it is written.
#pragma once

#include <QTimeZone>

#include <array>

// 28 characters and a zero: offsets of long ago have seconds.
using time_text = std::array<char, 29>;

// False for what is no time: less than a day from 1970-01-01 00:00 UTC (0 is "none"; a text that the plugin could not
// read becomes the examining machine's offset from UTC), and years before 1 or after 9999 ("never").
bool is_time(qint64 unix_seconds);

// "2019-05-01T12:00:00+00:00", terminated by zero. unix_seconds: a time by is_time().
void put_utc_text(qint64 unix_seconds, time_text& text);
// The same instant on a zone's clocks, its offset from UTC behind it: "2019-05-01T17:30:00+05:30". In UTC where the
// clocks would show a year before 1 or after 9999.
void put_zone_text(qint64 unix_seconds, const QTimeZone& zone, time_text& text);
