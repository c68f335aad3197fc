// SPDX-License-Identifier: MIT
// What a value of each kind must look like.
#pragma once

#include "host/commands/option_table.h"

// Why the option does not take this value, in words for the user; an empty text when it does.
QString refused_value(const option_entry& option, const QString& text);

// The value of an option that takes names separated by commas: each once, trimmed, in the order of known_values() for
// tables, as they were typed for others. Call only with a value that is not refused.
QStringList names_in(const option_entry& option, const QString& text);
