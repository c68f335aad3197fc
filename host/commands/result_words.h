// SPDX-License-Identifier: MIT
// The words of the commands that read what a run wrote.
#pragma once

#include "host/commands/option_words.h"

// words: taken, that is, without an answer of their own.
command_line read_verify(const command_words& words);
command_line read_rows(const command_words& words);
command_line read_export(const command_words& words);
command_line read_diff(const command_words& words);
command_line read_schema(const command_words& words);
command_line read_log(const command_words& words);
