// SPDX-License-Identifier: MIT
// The kept columns of "Containers" and of the "Container_" tables.
#include "ese/container_reader.h"

#include "ese/record_walk.h"

namespace {

using container = specific_table::struct_container_data;
using entry = specific_table::struct_ano_data;

const kept_column<container, QString> container_texts[] = {
    {QLatin1String("ContainerId"), &container::container_id},
    {QLatin1String("Name"), &container::name},
};
const kept_column<entry, QString> entry_texts[] = {
    {QLatin1String("Filename"), &entry::filename},
    {QLatin1String("Url"), &entry::url},
    {QLatin1String("FileSize"), &entry::file_size},
    {QLatin1String("AccessCount"), &entry::access_count},
    {QLatin1String("SyncTime"), &entry::sync_time},
    {QLatin1String("CreationTime"), &entry::creation_time},
    {QLatin1String("ExpiryTime"), &entry::expiry_time},
    {QLatin1String("ModifiedTime"), &entry::modified_time},
    {QLatin1String("AccessedTime"), &entry::accessed_time},
    {QLatin1String("SecureDirectory"), &entry::secure_directory},
};

constexpr int secure_name_length = 8;

// One more copy, unless the list has become too long for it.
void add_names(QStringList& list, const QStringList& names) {
    if (list.isEmpty() || list.size() + names.size() <= container_reader::most_repeated_names) {
        list += names;
    }
}

} // namespace

QStringList secure_directory_names(const QString& text) {
    QStringList names;
    if (text.size() % secure_name_length != 0) {
        return names;
    }
    names.reserve(text.size() / secure_name_length);
    for (int offset = 0; offset < text.size(); offset += secure_name_length) {
        names.append(text.mid(offset, secure_name_length));
    }
    return names;
}

void container_reader::get_column_name_and_type(libesedb_record_t* record, libesedb_error_t* error) {
    walk_values(record, error, list_container_data, current_container_data);
}

void container_reader::get_record_values(libesedb_record_t* record, libesedb_error_t* error, QString column_name,
                                         int value_index, unsigned int column_type) {
    const auto value = [&] { return record_type_case(record, value_index, column_type, error); };
    if (QString* text = field_of_column(container_texts, column_name, *current_container_data)) {
        *text = utf8_until_nul(value());
    } else if (column_name == QLatin1String("Directory")) {
        // Deliberate: the value is UTF-8 and is read as Latin-1. A profile folder with other letters gives another text
        // than its name; decoded properly, rows would show paths that earlier runs over the same evidence do not have.
        current_container_data->directory = latin1_until_nul(value()).replace(QLatin1Char('\\'), QLatin1Char('/'));
    } else if (column_name == QLatin1String("SecureDirectories")) {
        current_container_data->secure_directories += secure_directory_names(latin1_until_nul(value()));
    }
}

void container_reader::get_column_name_and_type(libesedb_record_t* record, libesedb_error_t* error, QString directory,
                                                QStringList secure_directories) {
    const int known = list_ano_data.size();
    int visited = 0;
    visits = &visited;
    walk_values(record, error, list_ano_data, current_ano_data, directory, secure_directories);
    visits = nullptr;
    if (list_ano_data.size() > known) {
        list_ano_data[known].container_secure_directories = repeated_names(secure_directories, visited);
    }
}

const QStringList& container_reader::repeated_names(const QStringList& names, int copies) {
    if (last_repeated.copies != copies || last_repeated.names != names) { // quick: they share their data
        last_repeated = {names, copies, {}};
        for (int copy = 0; copy < copies; ++copy) {
            add_names(last_repeated.result, names);
        }
    }
    return last_repeated.result;
}

void container_reader::get_record_values(libesedb_record_t* record, libesedb_error_t* error, QString column_name,
                                         int value_index, unsigned int column_type, QString directory,
                                         QStringList secure_directories) {
    if (current_ano_data->container_directory != directory) {
        current_ano_data->container_directory = directory;
    }
    // Deliberate: a record of N columns holds N copies of the container's secure directories, one for each visit of a
    // value. An index beyond the first copy finds a name again; with one copy its row would lose the sub-directory.
    if (visits != nullptr) {
        ++*visits; // get_column_name_and_type makes the copies
    } else {
        add_names(current_ano_data->container_secure_directories, secure_directories);
    }
    if (QString* text = field_of_column(entry_texts, column_name, *current_ano_data)) {
        *text = utf8_until_nul(record_type_case(record, value_index, column_type, error));
    }
}
