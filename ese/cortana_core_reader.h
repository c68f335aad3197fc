// SPDX-License-Identifier: MIT
// What the three readers of CortanaCoreDb.dat have in common: the columns of "Triggers" (plain chain) and of
// "Reminders" (keyed chain with list). Each subclass reads its own trigger table through the keyed chain.
#pragma once

#include "ese/specific_table.h"

// No keyed chain filters: every row of the table is appended, with the key in its lookup_key.
class cortana_core_reader : public specific_table {
public:
    using specific_table::get_record_values;
    void get_record_values(libesedb_record_t* record, libesedb_error_t* error, QString column_name, int value_index,
                           unsigned int column_type) override;
    void get_record_values(libesedb_record_t* record, libesedb_error_t* error, QString column_name, int value_index,
                           unsigned int column_type, QString key, QStringList columns) override;
};
