// SPDX-License-Identifier: MIT
// An ESE file as libesedb sees it, with values as bytes. Whatever libesedb refuses reads as "(refused)".
#pragma once

#include "ese/ese_handles.h"

#include <QByteArrayList>
#include <QString>

#include <memory>

class record_view {
public:
    // Keeps the table, too: libesedb's record points into it, and finds no long value when it is gone.
    record_view(std::shared_ptr<libesedb_table_t> table, ese::record_handle handle)
        : owner(std::move(table)), record(std::move(handle)) {}

    bool is_valid() const { return record != nullptr; }
    bool is_long(int index) const { return libesedb_record_is_long_value(record.get(), index, nullptr) == 1; }

    // The stored bytes; a long value's are put together. A NULL value and an empty one look the same.
    QByteArray bytes(int index) const {
        if (!is_long(index)) {
            return sized(libesedb_record_get_value_data_size, libesedb_record_get_value_data, record.get(), index);
        }
        const auto value = ese::get_long_value(record.get(), index);
        return sized(libesedb_long_value_get_data_size, libesedb_long_value_get_data, value.get());
    }
    QByteArrayList all() const {
        int count = 0;
        libesedb_record_get_number_of_values(record.get(), &count, nullptr);
        QByteArrayList values;
        while (values.size() < count) {
            values << bytes(values.size());
        }
        return values;
    }
    int segments(int index) const {
        int count = -1;
        const auto value = ese::get_long_value(record.get(), index);
        libesedb_long_value_get_number_of_data_segments(value.get(), &count, nullptr);
        return count;
    }

private:
    template <class Size, class Data, class... Place>
    static QByteArray sized(Size get_size, Data get_data, Place... at) {
        size_t size = 0;
        const bool told = get_size(at..., &size, nullptr) == 1;
        QByteArray data(static_cast<int>(size), '\0');
        auto* const begin = reinterpret_cast<uint8_t*>(data.data());
        return told && (size == 0 || get_data(at..., begin, size, nullptr) == 1) ? data : QByteArray("(refused)");
    }

    std::shared_ptr<libesedb_table_t> owner;
    ese::record_handle record;
};

class table_view {
public:
    explicit table_view(ese::table_handle handle) : shared(std::move(handle)) {}

    int rows() const { // -1: libesedb cannot tell
        int count = -1;
        return libesedb_table_get_number_of_records(shared.get(), &count, nullptr) == 1 ? count : -1;
    }
    record_view row(int index) const {
        libesedb_record_t* record = nullptr;
        libesedb_table_get_record(shared.get(), index, &record, nullptr);
        return record_view(shared, ese::record_handle(record));
    }

private:
    std::shared_ptr<libesedb_table_t> shared;
};

class file_view {
public:
    explicit file_view(const QString& path) : opened(ese::open_file(path.toLocal8Bit())) {}

    bool is_valid() const { return opened != nullptr; }
    table_view table(const std::string& name = "Table") const {
        return table_view(ese::find_table(opened.get(), name.c_str()));
    }
    int tables() const {
        int count = -1;
        libesedb_file_get_number_of_tables(opened.get(), &count, nullptr);
        return count;
    }

private:
    ese::file_handle opened;
};
