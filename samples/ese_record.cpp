// SPDX-License-Identifier: MIT
// Rows in the form of ESE records.
#include "samples/ese_record.h"

#include "samples/ese_bytes.h"
#include "samples/ese_pages.h"

#include <algorithm>

namespace {

constexpr std::size_t automatic_long_value = 1024; // larger values leave the record, as in Windows
constexpr std::size_t reference_size = 4;
constexpr std::size_t key_size = 4;
// First byte of a tagged value.
constexpr std::uint8_t tagged_large = 1;
constexpr std::uint8_t tagged_reference = 4;
// In the offset of a tagged value on small pages: the value has such a byte.
constexpr std::uint16_t has_flags = 0x4000;

} // namespace

ese_record_encoder::ese_record_encoder(std::vector<ese_placed_column> columns, std::uint32_t page_size,
                                       long_value_store store)
    : placed(std::move(columns)), cells(placed.size()), large_pages(ese_is_large(page_size)),
      limit(ese_page_entries::capacity(page_size) - key_size), store_outside(std::move(store)) {
    for (std::size_t i = 0; i < placed.size(); ++i) {
        if (!placed[i].is_fixed() && !placed[i].is_tagged()) {
            variable_cells[placed[i].column.id - ese_first_variable] = &cells[i];
        }
    }
}

const std::string& ese_record_encoder::encode(const ese_row& values) {
    if (values.size() > placed.size()) {
        throw ese_error("ESE writer: row has more values than the table columns");
    }
    for (std::size_t i = 0; i < placed.size(); ++i) {
        fill(cells[i], values, placed[i]);
    }
    compose();
    while (record.size() > limit) {
        if (!move_largest_out()) {
            throw ese_error("ESE writer: record is larger than a page");
        }
        compose();
    }
    return record;
}

void ese_record_encoder::fill(cell& target, const ese_row& values, const ese_placed_column& column) {
    target.is_long = false;
    target.movable = false;
    target.null = column.index >= values.size() || values[column.index].is_null();
    if (target.null) {
        return;
    }
    const ese_value& value = values[column.index];
    ese_store_value(target.data, value, column);
    if (!ese_is_large_type(column.column.type)) {
        return;
    }
    target.movable = value.where() == ese_value::place::automatic;
    if (value.where() == ese_value::place::long_value ||
        (target.movable && target.data.size() > automatic_long_value)) {
        store_long(target);
    }
}

void ese_record_encoder::store_long(cell& target) {
    const std::uint32_t reference = store_outside(target.data);
    target.data.clear();
    append_le(target.data, reference);
    target.is_long = true;
    target.movable = false;
}

bool ese_record_encoder::move_largest_out() {
    cell* largest = nullptr;
    for (auto& candidate : cells) {
        const bool gains = candidate.movable && candidate.data.size() > reference_size;
        if (gains && (largest == nullptr || candidate.data.size() > largest->data.size())) {
            largest = &candidate;
        }
    }
    if (largest != nullptr) {
        store_long(*largest);
    }
    return largest != nullptr;
}

// The largest id below the bound that has a value.
std::uint32_t ese_record_encoder::last_id(std::uint32_t below, std::uint32_t none) const {
    std::uint32_t last = none;
    for (std::size_t i = 0; i < placed.size() && placed[i].column.id < below; ++i) {
        if (!cells[i].null) {
            last = std::max(last, placed[i].column.id);
        }
    }
    return last;
}

void ese_record_encoder::compose() {
    const std::uint32_t last_fixed = last_id(ese_first_variable, 0);
    const std::uint32_t last_variable = last_id(ese_first_tagged, ese_first_variable - 1);
    record.clear();
    append_le(record, static_cast<std::uint8_t>(std::min(last_fixed, ese_first_variable - 1)));
    append_le(record, static_cast<std::uint8_t>(std::max(last_variable, ese_first_variable - 1)));
    append_le<std::uint16_t>(record, 0);
    append_fixed(last_fixed);
    put_le(&record[2], static_cast<std::uint16_t>(record.size()));
    append_variable(last_variable);
    append_tagged();
}

void ese_record_encoder::append_fixed(std::uint32_t last) {
    constexpr char null_fill = 0x2A; // what Windows leaves in a fixed column that is NULL
    std::string null_bits((last + 7) / 8, '\xFF');
    for (std::size_t i = 0; i < last; ++i) {
        if (cells[i].null) {
            record.append(placed[i].size, null_fill);
            continue;
        }
        record += cells[i].data;
        null_bits[i / 8] = static_cast<char>(static_cast<unsigned char>(null_bits[i / 8]) & ~(1U << i % 8));
    }
    record += null_bits;
}

void ese_record_encoder::append_variable(std::uint32_t last) {
    constexpr std::size_t null_bit = 0x8000;
    const std::size_t count = last < ese_first_variable ? 0 : last - ese_first_variable + 1;
    std::size_t end = 0;
    for (std::size_t i = 0; i < count; ++i) {
        const bool null = variable_cells[i] == nullptr || variable_cells[i]->null;
        end += null ? 0 : variable_cells[i]->data.size();
        append_le(record, static_cast<std::uint16_t>(null ? end | null_bit : end));
    }
    for (std::size_t i = 0; i < count; ++i) {
        if (variable_cells[i] != nullptr && !variable_cells[i]->null) {
            record += variable_cells[i]->data;
        }
    }
}

void ese_record_encoder::append_tagged() {
    std::size_t count = 0;
    for (std::size_t i = 0; i < placed.size(); ++i) {
        count += placed[i].is_tagged() && !cells[i].null ? 1 : 0;
    }
    tagged_values.clear();
    for (std::size_t i = 0; i < placed.size(); ++i) {
        const cell& value = cells[i];
        if (!placed[i].is_tagged() || value.null) {
            continue;
        }
        const bool large_type = ese_is_large_type(placed[i].column.type);
        // An empty value gets a flags byte too: readers take a value without any byte for the rest of the record.
        const bool flags = large_pages || large_type || value.data.empty();
        const std::size_t offset = 4 * count + tagged_values.size();
        append_le(record, static_cast<std::uint16_t>(placed[i].column.id));
        append_le(record, static_cast<std::uint16_t>(flags && !large_pages ? offset | has_flags : offset));
        if (flags) {
            append_le(tagged_values, static_cast<std::uint8_t>((large_type ? tagged_large : 0) |
                                                               (value.is_long ? tagged_reference : 0)));
        }
        tagged_values += value.data;
    }
    record += tagged_values;
}
