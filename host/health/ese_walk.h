// SPDX-License-Identifier: MIT
// How much of a table libesedb refuses, asked record by record as the plugin's readers ask.
#pragma once

#include <libesedb.h>

#include <QtGlobal>

#include <functional>

struct ese_walk {
    int rows = 0;              // that libesedb finds
    int refused_rows = 0;      // among them
    int first_refused = -1;    // the readers give up there
    qint64 refused_values = 0; // of the other rows: texts that do not decode, values that cannot be got
    qint64 lost_values = 0;    // long values that cannot be found or are not whole
};

// Walks all records and values. Stops early, with what it has, when cancelled() says so.
ese_walk walk_table(libesedb_table_t* table, int rows, const std::function<bool()>& cancelled);
