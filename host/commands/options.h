// SPDX-License-Identifier: MIT
// The command line, read into plain values. Nothing is printed and nothing is looked up on disk here.
#pragma once

#include "host/commands/batch_options.h"
#include "host/commands/diff_command.h"
#include "host/commands/export_command.h"
#include "host/commands/rows_command.h"
#include "host/commands/verify_command.h"
#include "host/run/extract_options.h"

#include <QString>
#include <QStringList>

enum class command {
    extract,
    check,
    verify,
    log,
    rows,
    export_tables,
    diff,
    schema,
    batch_create,
    batch_check,
    batch_run,
    batch_status,
    batch_merge,
    version,
    help,
    refused
};

struct command_line {
    command what = command::refused;
    extract_options extract; // of the command check, too
    verify_options verify;
    QString log_file; // of the command log
    rows_options rows;
    export_options exports;
    diff_options diff;
    bool schema_as_json = false;
    batch_create_options batch_create;
    QString batch_manifest; // of the command batch check
    batch_run_options batch_run;
    batch_status_options batch_status;
    batch_merge_options batch_merge;
    QString text; // the help text, or why the command line is refused
};

// arguments: the program's name first, as QCoreApplication has them.
command_line read_command_line(const QStringList& arguments);
