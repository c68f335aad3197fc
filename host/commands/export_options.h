// SPDX-License-Identifier: MIT
// The words of the commands "export", "diff" and "schema".
#pragma once

#include "host/commands/options.h"

// arguments: as for read_command_line(), but that the command's name is known to follow the program's.
command_line read_export(const QStringList& arguments);
command_line read_diff(const QStringList& arguments);
command_line read_schema(const QStringList& arguments);
