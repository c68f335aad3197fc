// SPDX-License-Identifier: MIT
// The reader that cache, cookies and domstore share. The plain chain reads "Containers" into list_container_data; the
// keyed chain with list reads a "Container_" table into list_ano_data, carrying the container's directory (the key) and
// its secure directories (the list) down to every record.
#pragma once

#include "ese/specific_table.h"

// Columns are matched by their exact names; other columns are skipped unread. The caller empties the lists between
// database files. The remaining chain stays the base class's and keeps nothing.
class container_reader : public specific_table {
public:
    using specific_table::get_column_name_and_type;
    using specific_table::get_record_values;

    void get_record_values(libesedb_record_t* record, libesedb_error_t* error, QString column_name, int value_index,
                           unsigned int column_type) override;
    void get_column_name_and_type(libesedb_record_t* record, libesedb_error_t* error) override;
    void get_column_name_and_type(libesedb_record_t* record, libesedb_error_t* error, QString directory,
                                  QStringList secure_directories) override;
    void get_record_values(libesedb_record_t* record, libesedb_error_t* error, QString column_name, int value_index,
                           unsigned int column_type, QString directory, QStringList secure_directories) override;

    // A damaged file chooses both the number of names and the number of columns; a real one has at most 32 of each.
    // No record gets more names than this, but one copy of them all.
    static constexpr int most_repeated_names = 1 << 22;

private:
    // All records of a table share one list, made once.
    const QStringList& repeated_names(const QStringList& names, int copies);
    struct {
        QStringList names;
        int copies = 0;
        QStringList result;
    } last_repeated;
    int* visits = nullptr; // of the values of the record being walked; null outside a walk
};

// The names of 8 characters that stand side by side in a container's "SecureDirectories"; none when the length of the
// text is not a positive multiple of 8.
QStringList secure_directory_names(const QString& text);
