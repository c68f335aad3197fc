// SPDX-License-Identifier: MIT
// Sizes are asked for, not contents: libesedb decodes a text, and puts a long value together, to tell its size.
#include "host/health/ese_walk.h"

#include "ese/ese_handles.h"

namespace {

bool is_text(uint32_t type) {
    return type == LIBESEDB_COLUMN_TYPE_TEXT || type == LIBESEDB_COLUMN_TYPE_LARGE_TEXT;
}

// NULL is no failure: libesedb answers 0 to it.
bool is_refused(libesedb_record_t* record, int index, uint32_t type) {
    size_t size = 0;
    return is_text(type) ? libesedb_record_get_value_utf8_string_size(record, index, &size, nullptr) < 0
                         : libesedb_record_get_value_data_size(record, index, &size, nullptr) < 0;
}

bool is_lost(libesedb_record_t* record, int index, uint32_t type) {
    const ese::long_value_handle value = ese::get_long_value(record, index);
    size_t text_size = 0;
    size64_t size = 0;
    if (!value) {
        return true;
    }
    return is_text(type) ? libesedb_long_value_get_utf8_string_size(value.get(), &text_size, nullptr) < 0
                         : libesedb_long_value_get_data_size(value.get(), &size, nullptr) != ese::success;
}

// False: the record's values cannot be asked for.
bool walk_values(libesedb_record_t* record, ese_walk& found) {
    int values = 0;
    if (libesedb_record_get_number_of_values(record, &values, nullptr) != ese::success) {
        return false;
    }
    for (int index = 0; index < values; ++index) {
        uint32_t type = 0;
        if (libesedb_record_get_column_type(record, index, &type, nullptr) != ese::success) {
            return false;
        }
        if (libesedb_record_is_long_value(record, index, nullptr) == ese::success) {
            found.lost_values += is_lost(record, index, type) ? 1 : 0;
        } else {
            found.refused_values += is_refused(record, index, type) ? 1 : 0;
        }
    }
    return true;
}

} // namespace

ese_walk walk_table(libesedb_table_t* table, int rows, const std::function<bool()>& cancelled) {
    ese_walk found;
    found.rows = rows;
    for (int row = 0; row < rows && !cancelled(); ++row) {
        libesedb_record_t* record = nullptr;
        const bool got = libesedb_table_get_record(table, row, &record, nullptr) == ese::success;
        const ese::record_handle owned(record);
        if (!got || !owned || !walk_values(record, found)) {
            ++found.refused_rows;
            found.first_refused = found.first_refused < 0 ? row : found.first_refused;
        }
    }
    return found;
}
