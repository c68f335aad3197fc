// SPDX-License-Identifier: MIT
// What the words of all commands have in common.
#pragma once

#include "host/commands/options.h"

#include <optional>

class QCommandLineParser;

command_line refusal(const QString& reason);
command_line help_answer(const QString& text);
command_line versions_answer();

// --help and --version.
void add_common_options(QCommandLineParser& parser);
bool asks_for_help(const QCommandLineParser& parser);
bool asks_for_versions(const QCommandLineParser& parser);

// Reads a command's words. Gives the answer when that is settled by them: help, versions, or that the command does not
// take these words; nothing when it takes them. paths: how many words follow the command's name.
std::optional<command_line> settle_words(QCommandLineParser& parser, const QStringList& arguments, int paths,
                                         const char* taken, const char* examples = "");

// The value of --tables, in the plugin's order. Returns why the list is refused, or an empty text.
QString read_tables(const QString& text, QStringList& tables);
