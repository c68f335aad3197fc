// SPDX-License-Identifier: MIT
// What libesedb refuses of a database. The plugin's readers say nothing of it: a table that they cannot read gives the
// same rows as an empty one.
#pragma once

#include "host/health/evidence_record.h"
#include "host/health/health_report.h"

#include <QStringList>

#include <functional>

// Opens the database of the record, whose health is known and names no problem, with libesedb and compares what it
// finds of each table that the selected result tables need with the checker's own count. Where that, damage or the
// shape of rows gives cause, and in small tables, all rows are read. Runs a parser of another's over evidence: for
// confined processes only.
void probe_ese_database(const evidence_record& record, const QStringList& selected,
                        const std::function<bool()>& cancelled, health_report& report);
