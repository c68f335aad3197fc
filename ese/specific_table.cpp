// SPDX-License-Identifier: MIT
// Opening a file, finding a table, walking its records and values: one walk, of which the three chains are overloads.
#include "ese/specific_table.h"

#include "ese/record_walk.h"
#include "ese/value_buffer.h"

#include <QFileInfo>

namespace {

constexpr size_t ordinary_name = 1024;

// Bytes of long values that each byte of a sound file comes to at the most: they may be compressed, but not shared by
// the thousand.
constexpr qint64 most_growth = 16;

} // namespace

template <class... Extra>
int specific_table::start_chain(const QString& file_path, const QString& table_name, const Extra&... extra) {
    const ese::file_handle file = ese::open_file(file_path.toLocal8Bit());
    if (!file) {
        return -1;
    }
    long_bytes_left = always_allowed_long_bytes + most_growth * QFileInfo(file_path).size();
    get_desired_table(file.get(), nullptr, table_name, extra...);
    long_bytes_left = unlimited;
    return 0;
}

template <class... Extra>
void specific_table::find_table(libesedb_file_t* file, libesedb_error_t* error, const QString& table_name,
                                const Extra&... extra) {
    const ese::table_handle table = ese::find_table(file, table_name.toLocal8Bit());
    if (table) {
        get_records(table.get(), error, extra...);
    }
}

template <class... Extra>
int specific_table::walk_records(libesedb_table_t* table, libesedb_error_t* error, const Extra&... extra) {
    int count = 0;
    int status = libesedb_table_get_number_of_records(table, &count, nullptr);
    if (status != ese::success) {
        return status;
    }
    QVector<QString> names;
    names_of_table = &names;
    bool is_wanted = true;
    for (int index = 0; index < count && is_wanted; ++index) {
        libesedb_record_t* record = nullptr;
        status = libesedb_table_get_record(table, index, &record, nullptr);
        const ese::record_handle owned(record);
        if (status != ese::success || !owned) {
            break;
        }
        get_column_name_and_type(record, error, extra...);
        is_wanted = !record_sink || record_sink();
    }
    names_of_table = nullptr;
    return status;
}

bool specific_table::may_hand_out(quint64 bytes) {
    if (bytes > static_cast<quint64>(long_bytes_left)) {
        return false;
    }
    long_bytes_left -= long_bytes_left == unlimited ? 0 : static_cast<qint64>(bytes);
    return true;
}

const QString& specific_table::name_of_value(libesedb_record_t* record, int value_index, libesedb_error_t* error) {
    if (!names_of_table) {
        return name_outside_walk = get_column_name(record, value_index, error);
    }
    if (value_index >= names_of_table->size()) {
        names_of_table->resize(value_index + 1);
    }
    QString& name = (*names_of_table)[value_index];
    if (name.isEmpty()) { // not asked yet, or libesedb could not tell
        name = get_column_name(record, value_index, error);
    }
    return name;
}

QString specific_table::get_column_name(libesedb_record_t* record, int value_index, libesedb_error_t*) {
    size_t size = 0;
    if (libesedb_record_get_utf8_column_name_size(record, value_index, &size, nullptr) != ese::success) {
        return QStringLiteral("");
    }
    ese::value_buffer<ordinary_name> name;
    name.fill(size, [=](uint8_t* buffer, size_t length) {
        return libesedb_record_get_utf8_column_name(record, value_index, buffer, length, nullptr);
    });
    return QLatin1String(name.data());
}

int specific_table::start_parsing(QString file_path, QString table_name) {
    return start_chain(file_path, table_name);
}

int specific_table::start_parsing(QString file_path, QString table_name, QString key, int /*flag*/) {
    return start_chain(file_path, table_name, key);
}

int specific_table::start_parsing(QString file_path, QString table_name, QString key, QStringList columns) {
    return start_chain(file_path, table_name, key, columns);
}

void specific_table::get_desired_table(libesedb_file_t* file, libesedb_error_t* error, QString table_name) {
    find_table(file, error, table_name);
}

void specific_table::get_desired_table(libesedb_file_t* file, libesedb_error_t* error, QString table_name,
                                       QString key) {
    find_table(file, error, table_name, key);
}

void specific_table::get_desired_table(libesedb_file_t* file, libesedb_error_t* error, QString table_name, QString key,
                                       QStringList columns) {
    find_table(file, error, table_name, key, columns);
}

int specific_table::get_records(libesedb_table_t* table, libesedb_error_t* error) {
    return walk_records(table, error);
}

int specific_table::get_records(libesedb_table_t* table, libesedb_error_t* error, QString key) {
    return walk_records(table, error, key);
}

int specific_table::get_records(libesedb_table_t* table, libesedb_error_t* error, QString key, QStringList columns) {
    return walk_records(table, error, key, columns);
}

void specific_table::get_column_name_and_type(libesedb_record_t* record, libesedb_error_t* error) {
    walk_values(record, error, list_struct_data, current_struct_data);
}

void specific_table::get_column_name_and_type(libesedb_record_t* record, libesedb_error_t* error, QString key) {
    walk_values(record, error, list_remainder_data, current_remainder_data, key);
}

void specific_table::get_column_name_and_type(libesedb_record_t* record, libesedb_error_t* error, QString key,
                                              QStringList columns) {
    walk_values(record, error, list_remainder_data, current_remainder_data, key, columns);
}

// The hooks of the base class store nothing: a bare reader gives records whose fields are all empty.
void specific_table::get_record_values(libesedb_record_t*, libesedb_error_t*, QString, int, unsigned int) {}
void specific_table::get_record_values(libesedb_record_t*, libesedb_error_t*, QString, int, unsigned int, QString) {}
void specific_table::get_record_values(libesedb_record_t*, libesedb_error_t*, QString, int, unsigned int, QString,
                                       QStringList) {}
