// SPDX-License-Identifier: MIT
// The words of the commands "extract" and "check".
#pragma once

#include "host/commands/options.h"

// arguments: as for read_command_line(), but that the command's name is known to follow the program's.
command_line read_extract(const QStringList& arguments);
command_line read_check(const QStringList& arguments);
