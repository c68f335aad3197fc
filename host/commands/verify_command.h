// SPDX-License-Identifier: MIT
// The command "verify": tells which files of a run are no longer what the run record says.
#pragma once

#include <QString>

struct verify_options {
    QString result; // the result folder, or the run record itself
    QString source; // empty: evidence is not looked at
    bool json = false;
};

// Returns the exit code: exit_failures when something differs, exit_output when there is no readable record.
int run_verify_command(const verify_options& options);
