// SPDX-License-Identifier: MIT
// For the implementation of readers: the walk over one record's values, and column tables that say which column goes
// into which field.
#pragma once

#include "common/text_decoding.h"
#include "ese/ese_handles.h"
#include "ese/specific_table.h"

template <class Record, class... Extra>
void specific_table::walk_values(libesedb_record_t* record, libesedb_error_t* error, QList<Record>& list,
                                 Record*& current, const Extra&... extra) {
    int values = 0;
    if (libesedb_record_get_number_of_values(record, &values, nullptr) != ese::success) {
        return;
    }
    list.append(Record());
    current = &list.last(); // lists of records hold pointers, so it stays where it is
    bool complete = true;
    for (int index = 0; complete && index < values; ++index) {
        const QString& name = name_of_value(record, index, error);
        uint32_t type = 0;
        complete = libesedb_record_get_column_type(record, index, &type, nullptr) == ese::success;
        if (complete) {
            get_record_values(record, error, name, index, type, extra...);
        }
    }
    current = nullptr;
    if (!complete) {
        list.removeLast();
    }
}

// One kept column: its exact name and the field for its value.
template <class Record, class Field>
struct kept_column {
    QLatin1String name;
    Field Record::*field;
};

// The field of the column of that name, or null when the column is not kept.
template <class Record, class Field, size_t Count>
Field* field_of_column(const kept_column<Record, Field> (&columns)[Count], const QString& name, Record& record) {
    for (const kept_column<Record, Field>& column : columns) {
        // Sizes first: most of the comparisons are between names of columns that are not kept.
        if (name.size() == column.name.size() && name == column.name) {
            return &(record.*column.field);
        }
    }
    return nullptr;
}
