// SPDX-License-Identifier: MIT
// The command "schema": tells what the tables and columns of a result database hold.
#pragma once

// Returns the exit code.
int run_schema_command(bool as_json);
