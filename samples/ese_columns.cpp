// SPDX-License-Identifier: MIT
// The columns of one ESE table with their places in the record.
#include "samples/ese_columns.h"

#include <algorithm>

namespace {

// 0: the type has no size of its own.
std::uint32_t type_size(ese_type type) {
    switch (type) {
    case ese_type::boolean:
    case ese_type::unsigned_8:
        return 1;
    case ese_type::signed_16:
    case ese_type::unsigned_16:
        return 2;
    case ese_type::signed_32:
    case ese_type::unsigned_32:
    case ese_type::float_32:
        return 4;
    case ese_type::currency:
    case ese_type::float_64:
    case ese_type::date_time:
    case ese_type::signed_64:
        return 8;
    case ese_type::guid:
        return 16;
    case ese_type::binary:
    case ese_type::text:
    case ese_type::large_binary:
    case ese_type::large_text:
    case ese_type::super_large:
        return 0;
    }
    throw ese_error("ESE writer: unknown column type");
}

class id_source {
public:
    void take(ese_column& column) {
        const bool sized = type_size(column.type) != 0;
        std::uint32_t& next = sized ? next_fixed : ese_is_large_type(column.type) ? next_tagged : next_variable;
        if (column.id == 0) {
            column.id = next;
        }
        std::uint32_t& own = column.id < ese_first_variable ? next_fixed
                             : column.id < ese_first_tagged ? next_variable
                                                            : next_tagged;
        own = std::max(own, column.id + 1);
    }

private:
    std::uint32_t next_fixed = 1;
    std::uint32_t next_variable = ese_first_variable;
    std::uint32_t next_tagged = ese_first_tagged;
};

std::uint32_t catalog_size(const ese_placed_column& placed) {
    constexpr std::uint32_t usual_limit = 255;
    const std::uint32_t own = type_size(placed.column.type);
    if (own != 0) {
        return own;
    }
    if (placed.is_fixed()) {
        return placed.column.size;
    }
    return ese_is_large_type(placed.column.type) ? 0 : usual_limit;
}

void check(const ese_placed_column& placed) {
    const auto& column = placed.column;
    const bool variable = !placed.is_fixed() && !placed.is_tagged();
    if (column.id > 0xFFFF) {
        throw ese_error("ESE writer: column id is above 65535: " + column.name);
    }
    if (ese_is_large_type(column.type) && !placed.is_tagged()) {
        throw ese_error("ESE writer: large types have tagged ids only: " + column.name);
    }
    if (variable && type_size(column.type) != 0) {
        throw ese_error("ESE writer: variable ids are for binary and text only: " + column.name);
    }
    if (placed.is_fixed() && placed.size == 0) {
        throw ese_error("ESE writer: fixed column without a size: " + column.name);
    }
}

} // namespace

std::vector<ese_placed_column> ese_place_columns(const std::vector<ese_column>& columns) {
    std::vector<ese_placed_column> result;
    id_source ids;
    for (const auto& column : columns) {
        ese_placed_column placed;
        placed.column = column;
        placed.index = result.size();
        ids.take(placed.column);
        if (ese_is_text(column.type) && column.code_page == ese_code_page::none) {
            placed.column.code_page = ese_code_page::windows_1252;
        }
        placed.size = catalog_size(placed);
        check(placed);
        result.push_back(placed);
    }
    std::sort(result.begin(), result.end(), [](const auto& a, const auto& b) { return a.column.id < b.column.id; });
    constexpr std::uint32_t record_header = 4;
    std::uint32_t offset = record_header;
    std::uint32_t before = 0;
    for (auto& placed : result) {
        if (placed.column.id == before) {
            throw ese_error("ESE writer: column id is taken: " + placed.column.name);
        }
        if (placed.is_fixed() && placed.column.id != before + 1) {
            throw ese_error("ESE writer: fixed column ids leave a gap before " + placed.column.name);
        }
        before = placed.column.id;
        placed.record_offset = static_cast<std::uint16_t>(placed.is_fixed() ? offset : 0);
        offset += placed.is_fixed() ? placed.size : 0;
        if (offset > 0x7FFF) {
            throw ese_error("ESE writer: fixed columns are too large together");
        }
    }
    return result;
}
