// SPDX-License-Identifier: MIT
// One rule a kind.
#include "host/commands/option_values.h"

#include "host/nearest_name.h"
#include "host/run/account_name.h"
#include "host/run/process_limits.h"

#include <QTimeZone>

#include <algorithm>
#include <tuple>

namespace {

QString refused_number(const option_entry& option, const QString& text) {
    bool is_number = false;
    std::ignore = text.toInt(&is_number);
    return is_number ? QString()
                     : QStringLiteral("the %1 '%2' is not a number").arg(QString::fromUtf8(option.thing), text);
}

QString refused_unless(bool is_possible, const option_entry& option, const QString& text) {
    return is_possible ? QString() : QStringLiteral("--%1 does not take '%2'").arg(option.long_name(), text);
}

QString refused_names(const char* thing, const option_entry& option, const QString& text) {
    const QStringList known = known_values(option);
    for (const QString& word : text.split(QLatin1Char(','))) {
        const QString name = word.trimmed();
        if (!known.contains(name)) {
            return QStringLiteral("there is no %1 '%2'; did you mean '%3'?")
                .arg(QString::fromUtf8(thing), name, nearest_name(name, known));
        }
    }
    return {};
}

QString refused_choice(const option_entry& option, const QString& text) {
    QStringList known = known_values(option);
    if (known.contains(text)) {
        return {};
    }
    const QString last = known.takeLast();
    return QStringLiteral("there is no %1 '%2': %3 or %4")
        .arg(QString::fromUtf8(option.thing), text, known.join(QStringLiteral(", ")), last);
}

QString refused_profile(const QString& text) {
    return account_of(text) ? QString() : QStringLiteral("'%1' cannot name a profile folder").arg(text);
}

QString refused_path(const option_entry& option, const char* usual_thing, const QString& text) {
    const char* const thing = *option.thing != '\0' ? option.thing : usual_thing;
    return text.isEmpty() ? QStringLiteral("the %1's name is empty").arg(QString::fromUtf8(thing)) : QString();
}

} // namespace

QString refused_value(const option_entry& option, const QString& text) {
    switch (option.kind) {
    case value_kind::none:
    case value_kind::text:
        return {};
    case value_kind::count: {
        bool is_number = false;
        return refused_unless(text.toInt(&is_number) >= 1 && is_number, option, text);
    }
    case value_kind::number:
        return refused_number(option, text);
    case value_kind::size:
        return refused_unless(parse_size(text).value_or(0) >= 1, option, text);
    case value_kind::file:
        return refused_path(option, "file", text);
    case value_kind::folder:
        return refused_path(option, "folder", text);
    case value_kind::path:
        return refused_path(option, "path", text);
    case value_kind::tables:
        return refused_names("table", option, text);
    case value_kind::formats:
        return refused_names("format", option, text);
    case value_kind::profile:
        return refused_profile(text);
    case value_kind::time_zone:
        return QTimeZone::isTimeZoneIdAvailable(text.toUtf8()) ? QString()
                                                               : QStringLiteral("there is no time zone '%1'").arg(text);
    case value_kind::choice:
        return refused_choice(option, text);
    }
    return {};
}

QStringList names_in(const option_entry& option, const QString& text) {
    QStringList wanted;
    for (const QString& word : text.split(QLatin1Char(','))) {
        wanted.append(word.trimmed());
    }
    wanted.removeDuplicates();
    if (option.kind != value_kind::tables) {
        return wanted;
    }
    QStringList ordered = known_values(option);
    ordered.erase(
        std::remove_if(ordered.begin(), ordered.end(), [&](const QString& name) { return !wanted.contains(name); }),
        ordered.end());
    return ordered;
}
