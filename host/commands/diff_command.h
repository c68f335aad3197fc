// SPDX-License-Identifier: MIT
// The command "diff": what two result databases tell differently.
#pragma once

#include <QString>
#include <QStringList>

struct diff_options {
    QString first;      // the result folder, or the SQLite file itself
    QString second;     // likewise
    QStringList tables; // never empty
    bool json = false;
};

// Returns the exit code: exit_complete when they hold the same rows, exit_failures when not, exit_output when one
// cannot be read.
int run_diff_command(const diff_options& options);
