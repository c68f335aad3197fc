// SPDX-License-Identifier: MIT
// The command "check": looks over the evidence of a source and tells of each file its digest and its state.
#pragma once

#include "host/run/extract_options.h"

// Returns the exit code: exit_failures when something could not be read or is damaged, exit_nothing_found when there is
// nothing that rows come from. Nothing is written. Of the options those are used that say what is examined and how.
int run_check_command(const extract_options& options);
