// SPDX-License-Identifier: MIT
// The columns of one ESE table with their places in the record, and single values in their stored form.
#pragma once

#include "samples/ese_writer.h"

constexpr std::uint32_t ese_first_variable = 128;
constexpr std::uint32_t ese_first_tagged = 256;

struct ese_placed_column {
    ese_column column;               // its id and code page are set
    std::size_t index = 0;           // among the values of a row
    std::uint32_t size = 0;          // as the catalog has it; of fixed columns, the bytes in the record
    std::uint16_t record_offset = 0; // of fixed columns

    bool is_fixed() const { return column.id < ese_first_variable; }
    bool is_tagged() const { return column.id >= ese_first_tagged; }
};

constexpr bool ese_is_text(ese_type type) {
    return type == ese_type::text || type == ese_type::large_text;
}
constexpr bool ese_is_large_type(ese_type type) {
    return type == ese_type::large_binary || type == ese_type::large_text || type == ese_type::super_large;
}

// In the order of the ids. Throws ese_error for ids that are taken, wrong for their type, or leave a gap.
std::vector<ese_placed_column> ese_place_columns(const std::vector<ese_column>& columns);

// Replaces `out` by the stored bytes of a value that is not NULL. Throws ese_error when the column cannot hold it.
void ese_store_value(std::string& out, const ese_value& value, const ese_placed_column& column);
