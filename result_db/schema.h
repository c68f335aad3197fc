// SPDX-License-Identifier: MIT
// The ten tables of the result database, in the order in which they are created.
#pragma once

#include <QVector>

struct result_table {
    const char* name;
    const char* create_statement; // with IF NOT EXISTS, so that rows of earlier runs stay
};

const QVector<result_table>& result_tables();
