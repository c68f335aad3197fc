// SPDX-License-Identifier: MIT
// A step run as the driver runs it, for the benchmarks of whole steps.
#pragma once

#include <QString>

// Makes an empty result database with all tables. False: it cannot be written.
bool make_result_database(const QString& path);

// Runs one table's step over the sources of the profile "anna" below root (ending in "/") into the result database at
// path. Returns the records written.
qint64 extract_table(const QString& table, const QString& root, const QString& path);
