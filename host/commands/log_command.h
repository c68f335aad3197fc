// SPDX-License-Identifier: MIT
// The command "log": prints a debug log, deciphered where it is enciphered.
#pragma once

#include <QString>

// Returns the exit code. Records that cannot be deciphered are named on standard error and passed over.
int run_log_command(const QString& file);
