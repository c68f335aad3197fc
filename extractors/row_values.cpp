// SPDX-License-Identifier: MIT
// Implementation of the values that rows of several tables share.
#include "extractors/row_values.h"

#include "common/filetime.h"
#include "common/plugin_static_function.h"
#include "extractors/step_run.h"

#include <ctime>
#include <optional>

namespace {

// The number that stands there in so many digits; -1 when another character is among them.
int number_at(const QString& text, int position, int digits) {
    int number = 0;
    for (const QChar character : text.midRef(position, digits)) {
        if (character < QLatin1Char('0') || character > QLatin1Char('9')) {
            return -1;
        }
        number = number * 10 + character.unicode() - '0';
    }
    return number;
}

// The date and time of "yyyy-MM-dd hh:mm:ss"; not valid when the text has another form.
QPair<QDate, QTime> date_and_time(const QString& text) {
    QString separators = text;
    for (const int digits : {17, 14, 11, 8, 5, 0}) {
        separators.remove(digits, digits == 0 ? 4 : 2);
    }
    if (text.size() != 19 || separators != QLatin1String("-- ::")) {
        return {};
    }
    return {{number_at(text, 0, 4), number_at(text, 5, 2), number_at(text, 8, 2)},
            {number_at(text, 11, 2), number_at(text, 14, 2), number_at(text, 17, 2)}};
}

// What QDateTime::fromString gives for such a text, with one question to the C library for which Qt asks several, each
// of which costs a look at the machine's zone file. Nothing where their answers might differ: in years that Qt does not
// ask for, and in hours that the change to summer time leaves out.
std::optional<qint64> ordinary_local_seconds(const QString& text) {
    constexpr int first_year = 1971, last_year = 2036;
    const auto [date, time] = date_and_time(text);
    if (!date.isValid() || !time.isValid() || date.year() < first_year || date.year() > last_year) {
        return std::nullopt;
    }
    std::tm local{};
    local.tm_year = date.year() - 1900;
    local.tm_mon = date.month() - 1;
    local.tm_mday = date.day();
    local.tm_hour = time.hour();
    local.tm_min = time.minute();
    local.tm_sec = time.second();
    local.tm_isdst = -1;
    const qint64 seconds = std::mktime(&local);
    const bool is_kept = local.tm_mday == date.day() && local.tm_hour == time.hour() && local.tm_min == time.minute();
    return is_kept ? std::make_optional(seconds) : std::nullopt;
}

} // namespace

row_origin origin_of(const QString& source_path, const step_context& context) {
    const QString& root = context.fs_extraction_source_path;
    const QPair<QString, QString> users = plugin_static_function::extract_user_name_from_sourcefile(source_path, root);
    const QPair<QString, QString> source_file = plugin_static_function::get_final_artifact_source_file(
        path_below_root(source_path, root), users.first, context.location_kind);
    return {users.first, users.second, source_file.first, context.os_scheme_display,
            plugin_static_function::get_source_count_name()};
}

QString path_below_root(const QString& path, const QString& root) {
    if (!path.startsWith(root)) {
        return path;
    }
    const QString below = path.mid(root.size());
    return below.startsWith(QLatin1Char('/')) ? below : QLatin1Char('/') + below;
}

qint64 filetime_to_unix_seconds(const QString& text) {
    const qint64 ticks = text.trimmed().toLongLong();
    return ticks > 0 ? (ticks - filetime::ticks_before_1970) / filetime::ticks_per_second : 0;
}

qint64 iso_text_to_unix_seconds(const QString& text) {
    QString time = text.trimmed();
    time.replace(QLatin1Char('T'), QLatin1Char(' '));
    time.remove(QLatin1Char('Z'));
    time = time.trimmed();
    if (time.isEmpty()) {
        return 0;
    }
    if (const std::optional<qint64> seconds = ordinary_local_seconds(time)) {
        return *seconds;
    }
    // Deliberate: no validity test; a text that does not parse gives what an invalid date-time gives. It is the suite's
    // contract.
    return QDateTime::fromString(time, QStringLiteral("yyyy-MM-dd hh:mm:ss")).toMSecsSinceEpoch() / 1000;
}

QString map_url(const QString& latitude, const QString& longitude) {
    return QStringLiteral("https://www.google.com/maps?q=") + latitude + QLatin1Char(',') + longitude;
}
