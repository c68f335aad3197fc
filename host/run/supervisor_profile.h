// SPDX-License-Identifier: MIT
// What the supervisor knows of one group of accounts. For the supervisor's own files.
#pragma once

#include "host/run/supervisor.h"

struct supervisor::profile {
    // naming: its rows are written, and the files that they name are looked for.
    enum { waiting, working, naming, finished, merged } state = waiting;
    int place = 0; // in the run
    QList<system_account> accounts;
    QString label;
    QStringList remaining;          // tables that no worker has finished or lost
    bool linked = false;            // a worker told what reminders belong to, or cannot
    QString links;                  // where it is told; empty: nowhere
    bool checked = false;           // the look over the evidence is done or lost
    QStringList folders;            // of its workers so far, the running one's last
    QVector<worker_rows> databases; // of its workers so far that finished a step
    QVector<QByteArray> named;      // paths that its rows name, not asked for yet
    int steps_done = 0;             // by the running worker
    qint64 rows_told = 0;           // by the running worker
    qint64 rows_kept = 0;           // of the running worker's finished steps
    qint64 rows_before = 0;         // of the finished steps of those before it
    int ended_runs = 0;             // runs of the plugin that came to their end
    log_findings log;
    health_report health;
    QVector<evidence_record> evidence;
    std::unique_ptr<worker_process> worker;
};
