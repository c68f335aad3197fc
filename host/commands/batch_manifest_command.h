// SPDX-License-Identifier: MIT
// The commands "batch create" and "batch check".
#pragma once

#include "host/commands/batch_options.h"

// Each returns the exit code.
int run_batch_create_command(const batch_create_options& options);
int run_batch_check_command(const QString& manifest);
