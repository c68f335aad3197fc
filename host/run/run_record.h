// SPDX-License-Identifier: MIT
// run.json: what a run was asked to do, on what, with what, and what came of it.
#pragma once

#include "host/run/summary.h"

#include <QDateTime>
#include <QString>
#include <QStringList>

// What the summary does not know.
struct run_circumstances {
    QStringList arguments; // of the program, without its name
    QDateTime started;
    QDateTime ended;
    bool sandbox_asked = true;
};

// Writes the record to RESULT/Artifacts_Result/Cortana/run.json: under a temporary name, flushed, renamed. The record
// of the run before is kept as run-<its time in UTC>.json, since its rows may still be in the database. False: it
// cannot be written, error says why; the record before is then still the one in place.
bool write_run_record(const run_summary& summary, const run_circumstances& circumstances, QString& error);
