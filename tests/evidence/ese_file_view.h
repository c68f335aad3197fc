// SPDX-License-Identifier: MIT
// An ESE file as libesedb sees it, with values as bytes and as text. Whatever libesedb refuses reads as "(refused)".
#pragma once

#include "ese/ese_handles.h"

#include <QByteArray>
#include <QString>

#include <memory>

constexpr const char* refused = "(refused)";

class record_view {
public:
    // Keeps the table, too: libesedb's record points into it, and finds no long value when it is gone.
    record_view(std::shared_ptr<libesedb_table_t> table, ese::record_handle handle)
        : owner(std::move(table)), record(std::move(handle)) {}

    bool is_valid() const { return record != nullptr; }
    bool is_long(int index) const { return libesedb_record_is_long_value(record.get(), index, nullptr) == 1; }

    // The stored bytes; a long value's are put together. NULL for a NULL value and an empty one, which look the same.
    QByteArray bytes(int index) const {
        if (is_long(index)) {
            return long_bytes(index);
        }
        size_t size = 0;
        if (libesedb_record_get_value_data_size(record.get(), index, &size, nullptr) != 1) {
            return refused;
        }
        QByteArray data(static_cast<int>(size), '\0');
        auto* const at = reinterpret_cast<uint8_t*>(data.data());
        if (size == 0) {
            return {};
        }
        return libesedb_record_get_value_data(record.get(), index, at, size, nullptr) == 1 ? data : refused;
    }

    QString text(int index) const {
        size_t size = 0;
        if (is_long(index)) {
            const auto value = ese::get_long_value(record.get(), index);
            if (!value || libesedb_long_value_get_utf8_string_size(value.get(), &size, nullptr) != 1) {
                return QLatin1String(refused);
            }
            QByteArray utf8(static_cast<int>(size), '\0');
            auto* const at = reinterpret_cast<uint8_t*>(utf8.data());
            const bool good = libesedb_long_value_get_utf8_string(value.get(), at, size, nullptr) == 1;
            return good ? without_end(utf8) : QLatin1String(refused);
        }
        if (libesedb_record_get_value_utf8_string_size(record.get(), index, &size, nullptr) != 1) {
            return QLatin1String(refused);
        }
        QByteArray utf8(static_cast<int>(size), '\0');
        auto* const at = reinterpret_cast<uint8_t*>(utf8.data());
        const bool good = libesedb_record_get_value_utf8_string(record.get(), index, at, size, nullptr) == 1;
        return good ? without_end(utf8) : QLatin1String(refused);
    }

    int segments(int index) const {
        const auto value = ese::get_long_value(record.get(), index);
        int count = -1;
        if (value) {
            libesedb_long_value_get_number_of_data_segments(value.get(), &count, nullptr);
        }
        return count;
    }

private:
    static QString without_end(const QByteArray& utf8) { return QString::fromUtf8(utf8.left(utf8.size() - 1)); }

    QByteArray long_bytes(int index) const {
        const auto value = ese::get_long_value(record.get(), index);
        size64_t size = 0;
        if (!value || libesedb_long_value_get_data_size(value.get(), &size, nullptr) != 1) {
            return refused;
        }
        QByteArray data(static_cast<int>(size), '\0');
        auto* const at = reinterpret_cast<uint8_t*>(data.data());
        const bool good = size == 0 || libesedb_long_value_get_data(value.get(), at, size, nullptr) == 1;
        return good ? data : refused;
    }

    std::shared_ptr<libesedb_table_t> owner;
    ese::record_handle record;
};

class table_view {
public:
    explicit table_view(ese::table_handle handle) : shared(std::move(handle)) {}

    bool is_valid() const { return shared != nullptr; }
    int rows() const { // -1: libesedb cannot tell
        int count = -1;
        return libesedb_table_get_number_of_records(shared.get(), &count, nullptr) == 1 ? count : -1;
    }
    record_view row(int index) const {
        libesedb_record_t* record = nullptr;
        libesedb_table_get_record(shared.get(), index, &record, nullptr);
        return record_view(shared, ese::record_handle(record));
    }
    int columns() const {
        int count = -1;
        libesedb_table_get_number_of_columns(shared.get(), &count, 0, nullptr);
        return count;
    }

private:
    std::shared_ptr<libesedb_table_t> shared;
};

class file_view {
public:
    explicit file_view(const QString& path) : opened(ese::open_file(path.toLocal8Bit())) {}

    bool is_valid() const { return opened != nullptr; }
    table_view table(const char* name) const { return table_view(ese::find_table(opened.get(), name)); }
    int tables() const {
        int count = -1;
        libesedb_file_get_number_of_tables(opened.get(), &count, nullptr);
        return count;
    }

private:
    ese::file_handle opened;
};
