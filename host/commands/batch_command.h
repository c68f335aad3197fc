// SPDX-License-Identifier: MIT
// The commands "batch run", "batch status" and "batch merge".
#pragma once

#include "host/commands/batch_options.h"

// Each returns the exit code.
int run_batch_run_command(const batch_run_options& options);
int run_batch_status_command(const batch_status_options& options);
int run_batch_merge_command(const batch_merge_options& options);
