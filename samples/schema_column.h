// SPDX-License-Identifier: MIT
// Columns as Windows' own databases have them: every text is UTF-16.
#pragma once

#include "samples/ese_writer.h"

// id 0: the next free one of the type's kind.
inline ese_column schema_column(const char* name, ese_type type, std::uint32_t id = 0) {
    const bool is_text = type == ese_type::text || type == ese_type::large_text;
    return {id, name, type, is_text ? ese_code_page::utf_16 : ese_code_page::none, 0};
}
