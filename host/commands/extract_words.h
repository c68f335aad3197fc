// SPDX-License-Identifier: MIT
// The words of the commands that read evidence.
#pragma once

#include "host/commands/option_words.h"

// words: taken, that is, without an answer of their own.
command_line read_extract(const command_words& words);
command_line read_check(const command_words& words);
