// SPDX-License-Identifier: MIT
// The words of the command "export", but for the ones that other commands have, too.
#pragma once

#include "host/commands/export_command.h"

class QCommandLineParser;

void describe_export(QCommandLineParser& parser);
extern const char* const export_examples;

// Returns why the words are refused, or an empty text. result and tables are left alone.
QString read_export_values(const QCommandLineParser& parser, export_options& options);
