// SPDX-License-Identifier: MIT
// Has the wanted parts of a source staged by a worker of its own, and gives the copies their times.
#pragma once

#include "host/health/health_report.h"
#include "host/run/extract_options.h"
#include "host/run/worker_protocol.h"

#include <QByteArray>
#include <QVector>

struct staging_outcome {
    bool as_given = false;        // the source can be read as it stands; nothing was staged
    QVector<staged_file> files;   // copies, folders, and empty files for names that rows ask for
    QVector<QByteArray> profiles; // names of the staged profile folders, in byte order
    health_report findings;       // by the paths of the view
    sandbox_state sandbox;
    int refused = 0; // an exit code when there is nothing to go on with
    QString reason;
};

// True when the plugin may read the folder as it stands, as far as names and sizes tell.
bool is_plain_folder(const QByteArray& source, const extract_options& options);

// folder: ends in "/"; what an earlier run left there is removed. Of a worker that is lost, what it had copied whole
// stays, and all else is told as a problem. Needs the application object.
staging_outcome stage_source(const QByteArray& source, const QString& folder, const extract_options& options);

// Removes a folder with all that is in it, names that are not UTF-8 too; follows no links.
void remove_staged(const QString& folder);
