// SPDX-License-Identifier: MIT
// UTF-8 to the code pages of ESE text columns.
#pragma once

#include "samples/ese_writer.h"

#include <string>

// Appends the text to `out`, without a terminator. Throws ese_error for bytes that are not UTF-8 and for characters
// that the code page does not have. `none` is Windows-1252.
void ese_append_text(std::string& out, const std::string& utf8, ese_code_page code_page);
