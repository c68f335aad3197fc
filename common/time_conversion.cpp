// SPDX-License-Identifier: MIT
// Time notations to Unix seconds and back to display text. Month names and AM/PM are English under every locale, so
// they are read and printed with QLocale::c(), never with the machine's.
#include "common/plugin_static_function.h"

#include <QLocale>

#include <limits>

namespace {

const QString nothing = QStringLiteral("");

QString before_first_point(const QString& text) {
    return text.left(text.indexOf(QLatin1Char('.'))); // left(-1) is the whole text
}

// What follows the last mark.
QString behind_last(const QString& text, QChar mark) {
    return text.mid(text.lastIndexOf(mark) + 1);
}

// A notation of date and time, the last separator between the two. An empty time format means midnight.
struct notation {
    const char* date;
    const char* separator;
    const char* time;
};

// The date and time as written, in the given zone; an invalid one when the text does not parse. The two are parsed
// apart: Qt's parser for both at once refuses wall times that the machine's own zone skips, though they are good in
// UTC.
QDateTime parsed(const QString& text, const notation& form, Qt::TimeSpec zone) {
    const bool has_time = *form.time != '\0';
    const QLatin1String separator(form.separator);
    const int cut = has_time ? text.lastIndexOf(separator) : text.size();
    const QDate date = QLocale::c().toDate(text.left(cut), QLatin1String(form.date));
    const QTime time =
        has_time ? QLocale::c().toTime(text.mid(cut + separator.size()), QLatin1String(form.time)) : QTime(0, 0);
    return cut >= 0 && date.isValid() && time.isValid() ? QDateTime(date, time, zone) : QDateTime();
}

QString epoch_text(const QDateTime& time, qint64 seconds_to_add = 0) {
    return time.date().isValid() ? QString::number(time.toMSecsSinceEpoch() / 1000 + seconds_to_add) : nothing;
}

// Cuts text just behind the last " AM " (or " PM "), its last blank excepted, and gives what followed the first one.
QString take_zone(QString& text, const QString& day_half) {
    const QString zone = text.mid(text.indexOf(day_half) + day_half.size());
    text.truncate(text.lastIndexOf(day_half) + day_half.size() - 1);
    return zone.trimmed();
}

constexpr notation iso_like = {"yyyy-MM-dd", " ", "hh:mm:ss"};

// The notation of a "T"-separated time, first match wins.
notation notation_of(const QString& date, const QString& time) {
    if (time.isEmpty()) {
        return {"yyyyMMdd", " ", ""};
    }
    if (time.contains(QLatin1Char('Z'))) {
        return {"yyyyMMdd", " ", "hhmmssZ"};
    }
    if (!date.contains(QLatin1Char('-'))) {
        return {"yyyyMMdd", " ", "hhmmss"};
    }
    return time.contains(QLatin1Char('.')) ? notation{"yyyy-MM-dd", " ", "hh:mm:ss.zzz"} : iso_like;
}

QString two_digits(qint64 number) {
    return QString::number(number).rightJustified(2, QLatin1Char('0'));
}

} // namespace

QString plugin_static_function::convert_apple_time_to_epoch(QString seconds_since_2001) {
    constexpr qint64 from_1970_to_2001 = 978307200;
    const QString text = seconds_since_2001.trimmed();
    if (text.isEmpty() || text == QLatin1String("0")) {
        return nothing;
    }
    bool is_number = false;
    const int seconds = before_first_point(text).toInt(&is_number);
    return is_number ? QString::number(seconds + from_1970_to_2001) : nothing;
}

QString plugin_static_function::convert_google_time_to_epoch(QString microseconds_since_1601) {
    constexpr qint64 from_1601_to_1970 = 11644473600;
    constexpr quint64 microseconds_per_second = 1000000;
    const QString& text = microseconds_since_1601;
    if (text.isEmpty() || text == QLatin1String("0")) {
        return nothing;
    }
    // Deliberate: ten characters are taken for Unix seconds already and not even parsed; some stores mix both kinds.
    if (text.size() == 10) {
        return text;
    }
    bool is_number = false;
    const quint64 microseconds = text.toULongLong(&is_number);
    return is_number ? QString::number(qint64(microseconds / microseconds_per_second) - from_1601_to_1970) : nothing;
}

QString plugin_static_function::convert_human_readable_to_epoch_1(QString text) {
    QString wall = text.trimmed();
    QString zone = nothing;
    for (const QString& day_half : {QStringLiteral(" AM "), QStringLiteral(" PM ")}) {
        if (wall.contains(day_half)) {
            zone = take_zone(wall, day_half);
            break;
        }
    }
    // Deliberate: every zone word but "UTC" means the machine's own time; the words are too ambiguous to look up.
    const Qt::TimeSpec clock = zone == QLatin1String("UTC") ? Qt::UTC : Qt::LocalTime;
    return epoch_text(parsed(wall.trimmed(), {"MMM d, yyyy", ", ", "h:mm:ss AP"}, clock));
}

QString plugin_static_function::convert_human_readable_to_epoch_2(QString text) {
    // Deliberate: a text without "." loses its last character, as removal from position -1 does; a repaired cut would
    // give times to texts that have none so far.
    QString wall = text;
    wall.remove(text.indexOf(QLatin1Char('.')), text.size());
    wall = wall.trimmed();
    if (wall == QLatin1String("0")) {
        return nothing;
    }
    const bool is_ahead = text.contains(QLatin1Char('+'));
    if (!is_ahead && !text.contains(QLatin1Char('-'))) {
        return nothing;
    }
    // Deliberate: without a zone, what follows the date's last "-" is taken for one.
    const int offset = convert_timezone_to_seconds(behind_last(text, QLatin1Char(is_ahead ? '+' : '-')));
    const QDateTime time = parsed(wall, iso_like, Qt::UTC);
    return epoch_text(time, is_ahead ? -qint64(offset) : qint64(offset));
}

QString plugin_static_function::convert_human_readable_to_epoch_3(QString text) {
    QString wall = text.trimmed();
    if (wall == QLatin1String("0")) {
        return nothing;
    }
    wall.remove(0, wall.indexOf(QLatin1Char(',')) + 1);
    wall.truncate(qMax(0, wall.lastIndexOf(QLatin1Char(' '))));
    return epoch_text(parsed(wall.trimmed(), {"dd MMM yyyy", " ", "hh:mm:ss"}, Qt::UTC));
}

int plugin_static_function::convert_timezone_to_seconds(QString hhmm) {
    const qint64 hours = hhmm.left(2).toInt();
    const qint64 minutes = hhmm.mid(2).toInt();
    const qint64 seconds = (minutes + hours * 60) * 60;
    const bool fits = qAbs(seconds) <= std::numeric_limits<int>::max();
    return fits ? static_cast<int>(seconds) : 0;
}

QString plugin_static_function::convert_timestamp_to_human_readable_in_UTC(QString epoch_seconds) {
    const int seconds = before_first_point(epoch_seconds.trimmed()).toInt();
    if (seconds == 0) {
        return nothing;
    }
    return QLocale::c().toString(QDateTime::fromSecsSinceEpoch(seconds, Qt::UTC),
                                 QStringLiteral("dd-MMM-yyyy hh:mm:ss"));
}

QString plugin_static_function::convert_T_Z_time_to_epoch(QString text) {
    const QString whole = text.trimmed();
    if (whole.isEmpty()) {
        return nothing;
    }
    const QLatin1Char separator(whole.contains(QLatin1Char('T')) ? 'T' : ' ');
    const QStringList parts = whole.split(separator);
    const QString date = parts.first().trimmed();
    QString time = parts.value(1).trimmed();
    time.replace(QLatin1Char('-'), QLatin1Char(':'));
    const QString wall = (date + QLatin1Char(' ') + time).trimmed();
    // Deliberate: read in the machine's zone, "Z" or not.
    return epoch_text(parsed(wall, notation_of(date, time), Qt::LocalTime));
}

QString plugin_static_function::get_human_readable_time(QString duration_seconds) {
    bool is_number = false;
    const qint64 duration = before_first_point(duration_seconds.trimmed()).toLongLong(&is_number);
    if (!is_number || duration < 0) {
        return nothing;
    }
    const QString hours = two_digits(duration / 3600);
    const QString rest = two_digits(duration % 3600 / 60) + QLatin1Char(':') + two_digits(duration % 60);
    return hours == QLatin1String("00") ? rest + QStringLiteral(" Min")
                                        : hours + QLatin1Char(':') + rest + QStringLiteral(" Hrs");
}

QString plugin_static_function::get_filtered_date_value(QString iso_text) {
    constexpr int shortest_plausible = 9;
    const QString text = iso_text.trimmed();
    if (text.isEmpty()) {
        return nothing;
    }
    // Deliberate: the date's own offset is replaced, not applied; the wall time is taken as UTC.
    QDateTime time = get_datetime_from_string_with_iso_date(text);
    time.setTimeSpec(Qt::UTC);
    const QString epoch = epoch_text(time);
    bool is_number = false;
    const quint64 seconds = epoch.toULongLong(&is_number);
    return is_number && epoch.size() >= shortest_plausible ? QString::number(seconds) : nothing;
}

QDateTime plugin_static_function::get_datetime_from_string_with_iso_date(QString iso_text) {
    const QString function =
        QStringLiteral("static QDateTime plugin_static_function::get_datetime_from_string_with_iso_date(QString)");
    app_debug(QStringLiteral("Start "), function);
    const QString text = iso_text.trimmed();
    const QDateTime time = QDateTime::fromString(text, Qt::ISODate);
    if (time.isValid()) {
        return time; // Deliberate: without an "End " line, which only the second attempt writes
    }
    const QStringList parts = text.split(QLatin1Char(' '));
    const QString glued = parts.value(0) + QLatin1Char(' ') + parts.value(1) + parts.value(2);
    const QDateTime second = QDateTime::fromString(glued, Qt::ISODate);
    app_debug(QStringLiteral("End "), function);
    return second;
}
