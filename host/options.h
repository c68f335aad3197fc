// SPDX-License-Identifier: MIT
// The command line, read into plain values. Nothing is printed and nothing is looked up on disk here.
#pragma once

#include "host/rows_command.h"
#include "plugin/host_records.h"

#include <QList>
#include <QString>
#include <QStringList>

using system_account = struct_GLOBAL_COMMON_VANTOR_AND_ARTIFACT_system_account;

struct extract_options {
    QString source;
    QString result;
    QList<system_account> users; // empty: every profile folder of the source
    QStringList tables;          // selected tables, in the plugin's order; never empty
    int source_number = 1;
    QString os_scheme;
    bool clear = false;
    bool all_profiles = false;
    QString log_file; // empty: the default one in the result folder
    bool log_terminal = false;
    bool encipher_log = false;
    QString library; // empty: the one beside the program
    bool json = false;
    bool quiet = false;
};

enum class command { extract, log, rows, version, help, refused };

struct command_line {
    command what = command::refused;
    extract_options extract;
    QString log_file; // of the command log
    rows_options rows;
    QString text; // the help text, or why the command line is refused
};

// arguments: the program's name first, as QCoreApplication has them.
command_line read_command_line(const QStringList& arguments);
