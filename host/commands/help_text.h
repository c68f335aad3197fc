// SPDX-License-Identifier: MIT
// What --help says besides the list of a command's options.
#pragma once

#include "host/commands/option_table.h"

// Of the whole program; of the commands of a group only, where its word is given ("batch"). program: as it was called.
QString general_help(const QString& program, const QString& group);

// Behind a command's options: examples and exit codes; empty for a command without.
QString examples_text(const command_entry& command);

// The names of commands that are told, in the table's order; of a group only, where its word is given.
QStringList command_names(const QString& group);
