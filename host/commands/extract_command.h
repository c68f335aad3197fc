// SPDX-License-Identifier: MIT
// The command "extract": checks, runs the plugin once for each profile (or once for all), and tells what came of it.
#pragma once

#include "host/run/extract_options.h"

// Returns the exit code. Nothing is written before the source and the result folder have been found in order.
int run_extract_command(const extract_options& options);
