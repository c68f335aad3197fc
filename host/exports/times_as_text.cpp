// SPDX-License-Identifier: MIT
// The C library splits seconds into days and hours: QDateTime would cost more than the rest of a row.
#include "host/exports/times_as_text.h"

#include <QDateTime>

#include <cstdio>
#include <cstdlib>
#include <ctime>

namespace {

constexpr qint64 seconds_per_day = 86400;
constexpr qint64 first_second = -62135596800; // 0001-01-01 00:00:00 UTC
constexpr qint64 last_second = 253402300799;  // 9999-12-31 23:59:59 UTC

char* put_digits(char* to, int value, int digits) {
    for (int i = digits - 1; i >= 0; --i) {
        to[i] = static_cast<char>('0' + value % 10);
        value /= 10;
    }
    return to + digits;
}

// "hh:mm:ss"
char* put_clock(char* to, int hours, int minutes, int seconds) {
    to = put_digits(to, hours, 2);
    *to++ = ':';
    to = put_digits(to, minutes, 2);
    *to++ = ':';
    return put_digits(to, seconds, 2);
}

char* put_date_and_clock(char* to, qint64 seconds) {
    const std::time_t time = seconds;
    std::tm parts = {};
    ::gmtime_r(&time, &parts); // cannot fail: is_time() bounds the years
    to = put_digits(to, parts.tm_year + 1900, 4);
    *to++ = '-';
    to = put_digits(to, parts.tm_mon + 1, 2);
    *to++ = '-';
    to = put_digits(to, parts.tm_mday, 2);
    *to++ = 'T';
    return put_clock(to, parts.tm_hour, parts.tm_min, parts.tm_sec);
}

void put_offset(char* to, int offset) {
    const int size = std::abs(offset);
    *to++ = offset < 0 ? '-' : '+';
    char* const end = put_clock(to, size / 3600, size / 60 % 60, size % 60);
    *(size % 60 == 0 ? end - 3 : end) = '\0';
}

} // namespace

bool is_time(qint64 unix_seconds) {
    return unix_seconds >= first_second && unix_seconds <= last_second &&
           (unix_seconds >= seconds_per_day || unix_seconds <= -seconds_per_day);
}

void put_utc_text(qint64 unix_seconds, time_text& text) {
    put_offset(put_date_and_clock(text.data(), unix_seconds), 0);
}

void put_zone_text(qint64 unix_seconds, const QTimeZone& zone, time_text& text) {
    const int offset = zone.offsetFromUtc(QDateTime::fromSecsSinceEpoch(unix_seconds, Qt::UTC));
    const qint64 shown = unix_seconds + offset;
    if (shown < first_second || shown > last_second) {
        return put_utc_text(unix_seconds, text);
    }
    put_offset(put_date_and_clock(text.data(), shown), offset);
}
