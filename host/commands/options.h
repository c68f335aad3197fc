// SPDX-License-Identifier: MIT
// The command line, read into plain values. Nothing is printed and nothing is looked up on disk here.
#pragma once

#include "host/commands/diff_command.h"
#include "host/commands/export_command.h"
#include "host/commands/rows_command.h"
#include "host/commands/verify_command.h"
#include "host/run/extract_options.h"

#include <QString>
#include <QStringList>

enum class command { extract, check, verify, log, rows, export_tables, diff, schema, version, help, refused };

struct command_line {
    command what = command::refused;
    extract_options extract; // of the command check, too
    verify_options verify;
    QString log_file; // of the command log
    rows_options rows;
    export_options exports;
    diff_options diff;
    bool schema_as_json = false;
    QString text; // the help text, or why the command line is refused
};

// arguments: the program's name first, as QCoreApplication has them.
command_line read_command_line(const QStringList& arguments);
