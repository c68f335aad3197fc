// SPDX-License-Identifier: MIT
// A subsection a command.
#include "host/manual/command_page.h"

#include "host/commands/option_table.h"
#include "host/manual/roff.h"

namespace {

QString option_tag(const option_entry& option) {
    QStringList shown{roff_bold(QStringLiteral("--") + option.long_name())};
    for (const QString& letter : option.all_names().mid(1)) {
        shown.prepend(roff_bold(QLatin1Char('-') + letter));
    }
    const QString value = QString::fromUtf8(option.value);
    return shown.join(QStringLiteral(", ")) + (value.isEmpty() ? QString() : QLatin1Char(' ') + roff_italic(value));
}

QString command_text(const command_entry& command) {
    const QString name = QString::fromUtf8(command.name);
    const QString usage = QStringLiteral("cortana %1 [options] %2").arg(name, command.argument_names());
    QString text = roff_subsection(usage.trimmed());
    text += roff_paragraph(QString::fromUtf8(command.description).replace(QLatin1Char('\n'), QLatin1Char(' ')));
    for (const argument_entry& argument : command.arguments) {
        text += roff_item(roff_italic(argument.shown()), QString::fromUtf8(argument.help));
    }
    for (const option_entry& option : option_table()) {
        if (option.is_taken_by(command) && !option.is_general()) {
            text += roff_item(option_tag(option), option.help_text());
        }
    }
    if (*command.exit_codes != '\0') {
        text += roff_paragraph(QStringLiteral("Exit codes: ") +
                               QString::fromUtf8(command.exit_codes).replace(QLatin1Char('\n'), QLatin1Char(' ')));
    }
    return text;
}

QString option_section() {
    QString text = roff_section(QStringLiteral("options"));
    for (const option_entry& option : option_table()) {
        if (option.is_general()) {
            text += roff_item(option_tag(option), option.help_text());
        }
    }
    return text;
}

} // namespace

QString command_page() {
    QString text = roff_title(QStringLiteral("cortana"), QStringLiteral("1"), QStringLiteral("User Commands"));
    text += roff_section(QStringLiteral("name")) +
            QStringLiteral("cortana \\- extract the Cortana data of a Windows source into an SQLite database\n");
    text += roff_section(QStringLiteral("synopsis")) + roff_bold(QStringLiteral("cortana")) + QLatin1Char(' ') +
            roff_italic(QStringLiteral("COMMAND")) + QStringLiteral(" [options] ARGUMENTS\n");
    text +=
        roff_section(QStringLiteral("description")) +
        roff_text(QStringLiteral("Finds the Cortana data of every user profile of a folder, a disk image or an archive "
                                 "and writes one row per artifact. Evidence is read in confined worker processes and "
                                 "never written to. cortana-result(5) tells what a run leaves.")) +
        QLatin1Char('\n');
    text += option_section() + roff_section(QStringLiteral("commands"));
    QString examples;
    for (const command_entry& command : command_table()) {
        if (*command.summary != '\0') {
            text += command_text(command);
            examples += QString::fromUtf8(command.examples);
        }
    }
    text += roff_section(QStringLiteral("examples")) + roff_lines(examples);
    text +=
        roff_section(QStringLiteral("exit status")) +
        roff_text(QStringLiteral("0 complete, 1 internal fault, 2 usage, 3 finished with failures, differences or "
                                 "evidence that could not be read, 4 nothing found, 5 output cannot be written, 130 "
                                 "or 143 cancelled.")) +
        QLatin1Char('\n');
    return text + roff_section(QStringLiteral("see also")) + roff_bold(QStringLiteral("cortana-result")) +
           QStringLiteral("(5); /usr/share/doc/cortana/docs\n");
}
