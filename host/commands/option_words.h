// SPDX-License-Identifier: MIT
// The words behind a command's name, parsed and judged by the table of options.
#pragma once

#include "host/commands/option_table.h"
#include "host/commands/options.h"

#include <QCommandLineParser>

#include <optional>

command_line refusal(const QString& reason);
command_line help_answer(const QString& text);
command_line versions_answer();

// The options that stand before any command, too.
void add_general_options(QCommandLineParser& parser);

class command_words {
public:
    // arguments: as for read_command_line(), the command's name following the program's. The entry must outlive this.
    command_words(const command_entry& read_command, const QStringList& arguments);

    // What is settled by the words themselves: help, versions, or a refusal, also of any value. Nothing when they are
    // taken; the functions below may be asked only then, and for options that the command takes.
    const std::optional<command_line>& answer() const { return settled; }

    bool has(const char* option) const;
    // The value, or what the table says holds where none is given.
    QString text(const char* option) const;
    QStringList texts(const char* option) const;
    int number(const char* option) const;  // of a count or a number
    qint64 size(const char* option) const; // bytes
    // Of tables or formats. Without the option all tables, and no formats.
    QStringList names(const char* option) const;

    // All of them with the command's name, for the record.
    const QStringList& as_typed() const { return typed; }

    // The command's own arguments from 0 on; an empty text where there are fewer.
    QString argument(int index) const { return given().value(index); }
    QStringList given() const { return parser.positionalArguments().mid(command.words().size()); }

private:
    void describe();
    std::optional<command_line> judge(const QStringList& arguments);
    QString refused_option(const option_entry& option) const;
    const option_entry& entry(const char* option) const;

    const command_entry& command;
    QStringList typed;
    QCommandLineParser parser;
    std::optional<command_line> settled;
};
