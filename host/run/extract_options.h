// SPDX-License-Identifier: MIT
// What an extraction is asked to do.
#pragma once

#include "contract/host_records.h"

#include <QList>
#include <QString>
#include <QStringList>

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
