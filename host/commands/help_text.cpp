// SPDX-License-Identifier: MIT
// Lines of two columns.
#include "host/commands/help_text.h"

#include <algorithm>

namespace {

using lines = QVector<QPair<QString, QString>>;

QVector<command_entry> commands_of(const QString& group) {
    QVector<command_entry> told;
    for (const command_entry& command : command_table()) {
        const bool is_wanted = group.isEmpty() || command.words().constFirst() == group;
        if (is_wanted && *command.summary != '\0') {
            told.append(command);
        }
    }
    return told;
}

QString in_columns(const lines& all) {
    int width = 0;
    for (const auto& [left, right] : all) {
        width = std::max(width, left.size());
    }
    QString text;
    for (const auto& [left, right] : all) {
        text += QStringLiteral("  %1 %2\n").arg(left.leftJustified(width), right);
    }
    return text;
}

lines command_lines(const QString& group) {
    lines all;
    for (const command_entry& command : commands_of(group)) {
        const QString usage = QString::fromUtf8(command.name) + QLatin1Char(' ') + command.argument_names();
        all.append({usage.trimmed(), QString::fromUtf8(command.summary)});
    }
    return all;
}

lines general_option_lines() {
    lines all;
    for (const option_entry& option : option_table()) {
        if (option.is_general()) {
            const QStringList names = option.all_names();
            all.append({QStringLiteral("-%1, --%2").arg(names.value(1), names.first()), option.help_text()});
        }
    }
    return all;
}

} // namespace

QString general_help(const QString& program, const QString& group) {
    return QStringLiteral("Usage: %1 COMMAND [options] ARGUMENTS\n"
                          "Extracts the Cortana data of a Windows source into a SQLite database.\n"
                          "\n"
                          "Commands:\n%2"
                          "\n"
                          "Options:\n%3"
                          "\n"
                          "Examples:\n"
                          "  cortana extract /mnt/evidence /cases/c1\n"
                          "  cortana rows --tables searches /cases/c1\n")
        .arg(program, in_columns(command_lines(group)), in_columns(general_option_lines()));
}

QString examples_text(const command_entry& command) {
    QString text;
    if (*command.examples != '\0') {
        text += QStringLiteral("\nExamples:\n");
        for (const QString& line : QString::fromUtf8(command.examples).split(QLatin1Char('\n'), Qt::SkipEmptyParts)) {
            text += QStringLiteral("  ") + line + QLatin1Char('\n');
        }
    }
    if (*command.exit_codes != '\0') {
        text += QStringLiteral("\nExit codes: %1\n").arg(QString::fromUtf8(command.exit_codes));
    }
    return text;
}

QStringList command_names(const QString& group) {
    QStringList names;
    for (const command_entry& command : commands_of(group)) {
        names.append(QString::fromUtf8(command.name));
    }
    return names;
}
