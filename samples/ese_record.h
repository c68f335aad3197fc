// SPDX-License-Identifier: MIT
// Rows in the form of ESE records.
#pragma once

#include "samples/ese_columns.h"

#include <array>
#include <functional>

class ese_record_encoder {
public:
    // Takes a value out of the record, and answers the reference that stands for it there.
    using long_value_store = std::function<std::uint32_t(const std::string& data)>;

    ese_record_encoder(std::vector<ese_placed_column> columns, std::uint32_t page_size, long_value_store store);

    // The record, valid until the next call. Throws ese_error when a value or the record does not fit.
    const std::string& encode(const ese_row& values);

private:
    struct cell {
        bool null = true;
        bool is_long = false; // its data is a reference
        bool movable = false; // may become a long value
        std::string data;
    };

    void fill(cell& target, const ese_row& values, const ese_placed_column& column);
    void store_long(cell& target);
    bool move_largest_out();
    void compose();
    void append_fixed(std::uint32_t last);
    void append_variable(std::uint32_t last);
    void append_tagged();
    std::uint32_t last_id(std::uint32_t below, std::uint32_t none) const;

    std::vector<ese_placed_column> placed;
    std::vector<cell> cells;                       // one a column
    std::array<const cell*, 128> variable_cells{}; // by id - 128; null where there is no column
    bool large_pages;
    std::size_t limit;
    long_value_store store_outside;
    std::string record;
    std::string tagged_values;
};
