// SPDX-License-Identifier: MIT
// Ownership of libesedb's handles. The only place that names one of its free or close calls.
//
// libesedb wants a handle to be null before each get, and answers 0 with the handle still null for "no such thing":
// only 1 is success. No error objects are asked for (see specific_table.h).
#pragma once

#include <QByteArray>

#include <libesedb.h>

#include <cstring>
#include <memory>

namespace ese {

constexpr int success = 1;

struct free_input {
    void operator()(libbfio_handle_t* input) const { libbfio_handle_free(&input, nullptr); }
};
struct close_file {
    std::unique_ptr<libbfio_handle_t, free_input> input; // what the file is read through; outlives it
    void operator()(libesedb_file_t* file) const {
        libesedb_file_close(file, nullptr);
        libesedb_file_free(&file, nullptr);
    }
};
struct free_table {
    void operator()(libesedb_table_t* table) const { libesedb_table_free(&table, nullptr); }
};
struct free_record {
    void operator()(libesedb_record_t* record) const { libesedb_record_free(&record, nullptr); }
};
struct free_long_value {
    void operator()(libesedb_long_value_t* value) const { libesedb_long_value_free(&value, nullptr); }
};

using file_handle = std::unique_ptr<libesedb_file_t, close_file>;
using table_handle = std::unique_ptr<libesedb_table_t, free_table>;
using record_handle = std::unique_ptr<libesedb_record_t, free_record>;
using long_value_handle = std::unique_ptr<libesedb_long_value_t, free_long_value>;

// Each gives a null handle when libesedb cannot. path is in the local 8-bit encoding, name in UTF-8; both end at
// their first zero byte. A file keeps its access time where the system allows that; only a regular one is opened.
file_handle open_file(const QByteArray& path);

inline table_handle find_table(libesedb_file_t* file, const QByteArray& name) {
    libesedb_table_t* table = nullptr;
    const auto* text = reinterpret_cast<const uint8_t*>(name.constData());
    const bool found =
        libesedb_file_get_table_by_utf8_name(file, text, std::strlen(name.constData()), &table, nullptr) == success;
    table_handle owned(table);
    return found ? std::move(owned) : nullptr;
}

inline long_value_handle get_long_value(libesedb_record_t* record, int index) {
    libesedb_long_value_t* value = nullptr;
    libesedb_record_get_long_value(record, index, &value, nullptr);
    return long_value_handle(value);
}

} // namespace ese
