// SPDX-License-Identifier: MIT
// What a run of the program adds up to: its exit code, and the summary as a table for people or as JSON for programs.
#pragma once

#include "host/health/evidence_record.h"
#include "host/health/health_report.h"
#include "host/record/log_findings.h"
#include "host/run/link_database.h"
#include "host/run/output_location.h"
#include "host/run/result_merge.h"
#include "host/run/sandbox.h"

#include <QJsonObject>
#include <QString>
#include <QStringList>

// A part of the work that a worker process did not come to the end of.
struct step_loss {
    QString profile;
    QString table;     // the step that is missing; empty: the look over the evidence, or what follows the last step
    QString file;      // that it was reading, or that the table's rows come from; empty where that is not known
    QString reason;    // a signal by its name, or the limit that it passed
    bool began = true; // false: the machine could not start the worker, so another run may come to the end
};

struct run_summary {
    QString source;
    output_location output;
    bool all_profiles = false;
    QStringList tables;       // selected ones, in the plugin's order
    QStringList profiles;     // chosen ones
    QStringList not_examined; // of these, those that a cancel left out
    added_rows rows;
    link_counts links;     // of the reminder rows added
    QString staged_copies; // the folder, where they are left; else empty
    qint64 milliseconds = 0;
    health_report health;
    QVector<evidence_record> evidence; // in the profiles' order
    qint64 evidence_not_listed = 0;    // files beyond those that a list holds
    log_findings log;
    QVector<step_loss> losses;
    sandbox_state sandbox;       // of the workers
    QString fault;               // why no worker can do its work; empty: they can
    QStringList output_troubles; // why rows or log lines may be missing
    int signal = 0;              // that cancelled the run

    // One that is known is not told again.
    void add_trouble(const QString& trouble);
    qint64 row_count() const;
};

// A fault of the program goes before lost output, that before a cancel, a cancel before a worker that could not be
// started, that before failures and lost steps, and these before an empty source.
int exit_code_of(const run_summary& summary);

// Ready to print: names are made printable.
QString summary_table(const run_summary& summary);
// The same facts for programs; names as they are.
QJsonObject summary_object(const run_summary& summary);
