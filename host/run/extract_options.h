// SPDX-License-Identifier: MIT
// What an extraction is asked to do.
#pragma once

#include "contract/host_records.h"
#include "host/run/progress.h"
#include "host/run/worker_limits.h"

#include <QList>
#include <QString>
#include <QStringList>

struct extract_options {
    QStringList words; // of the command line, without the program's name
    QString source;
    QString result;
    QList<system_account> users; // no profile twice; empty: every profile folder of the source
    QStringList tables;          // selected tables, in the plugin's order; never empty
    QString source_type;         // "folder", "image", "archive"; empty: told by content
    int volume = 0;              // of an image; 0: the one with a Windows tree
    qint64 archive_limit = 0;    // bytes to unpack; 0: the usual limits
    bool hive_logs = true;
    bool keep_staged = false;
    int source_number = 1;
    QString os_scheme;
    bool clear = false;
    bool all_profiles = false;
    int jobs = 1; // worker processes at once
    worker_limits limits;
    bool sandbox = true;
    QString log_file; // empty: the default one in the result folder
    bool log_terminal = false;
    bool encipher_log = false;
    QString library; // empty: the one beside the program
    progress_form progress = progress_form::none;
    QStringList export_formats; // to write at the end; may be empty
    bool json = false;
    bool quiet = false;
};
