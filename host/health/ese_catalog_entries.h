// SPDX-License-Identifier: MIT
// The catalog of an ESE database: which trees there are and whose they are.
#pragma once

#include "host/health/page_view.h"

#include <QByteArray>
#include <QVector>

enum class ese_tree_kind : quint8 { rows = 1, index = 3, long_values = 4 };

struct ese_catalog_entry {
    ese_tree_kind kind = ese_tree_kind::rows;
    quint32 table = 0;  // object id of the table
    quint32 object = 0; // of the tree itself; of rows the same
    quint32 root = 0;   // page
    QByteArray name;    // in Windows-1252, of rows the table's; at most 64 bytes
    quint32 found_on = 0;
};

// The trees that a leaf page of the catalog tells. Columns and whatever does not parse are left out.
QVector<ese_catalog_entry> ese_catalog_entries(const page_view& page, quint32 page_number);
