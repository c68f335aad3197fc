// SPDX-License-Identifier: MIT
// Prints a text that is made of the descriptions alone.
#include "host/commands/schema_command.h"

#include "host/console.h"
#include "host/exit_codes.h"
#include "host/exports/schema_text.h"

int run_schema_command(bool as_json) {
    return print(as_json ? schema_as_json() : schema_as_markdown()) ? exit_complete : exit_output;
}
