// SPDX-License-Identifier: MIT
// The words of the commands of a batch.
#pragma once

#include "host/commands/option_words.h"

// words: taken, that is, without an answer of their own.
command_line read_batch_create(const command_words& words);
command_line read_batch_check(const command_words& words);
command_line read_batch_run(const command_words& words);
command_line read_batch_status(const command_words& words);
command_line read_batch_merge(const command_words& words);
