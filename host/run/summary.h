// SPDX-License-Identifier: MIT
// What a run of the program adds up to: its exit code, and the summary as a table for people or as JSON for programs.
#pragma once

#include "host/health/health_report.h"
#include "host/record/log_findings.h"
#include "host/record/row_counts.h"
#include "host/run/output_location.h"

#include <QString>
#include <QStringList>

struct run_summary {
    QString source;
    output_location output;
    bool all_profiles = false;
    QStringList tables;       // selected ones, in the plugin's order
    QStringList profiles;     // chosen ones
    QStringList not_examined; // of these, those that a cancel left out
    added_rows rows;
    qint64 milliseconds = 0;
    health_report health;
    log_findings log;
    QStringList output_troubles; // why rows or log lines may be missing
    int signal = 0;              // that cancelled the run

    qint64 row_count() const;
};

// Lost output goes before a cancel, a cancel before failures, failures before an empty source.
int exit_code_of(const run_summary& summary);

// Ready to print: names are made printable.
QString summary_table(const run_summary& summary);
// One document with the same facts; names as they are.
QByteArray summary_json(const run_summary& summary);
