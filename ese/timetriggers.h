// SPDX-License-Identifier: MIT
// Reader of CortanaCoreDb.dat that keeps "TimeTriggers" when read through the keyed chain.
#pragma once

#include "ese/cortana_core_reader.h"

class timetriggers : public cortana_core_reader {
public:
    using cortana_core_reader::get_column_name_and_type;
    using cortana_core_reader::get_record_values;
    // Appends to list_time_triggers_data.
    void get_column_name_and_type(libesedb_record_t* record, libesedb_error_t* error, QString key) override;
    void get_record_values(libesedb_record_t* record, libesedb_error_t* error, QString column_name, int value_index,
                           unsigned int column_type, QString key) override;
};
