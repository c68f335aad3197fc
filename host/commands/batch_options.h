// SPDX-License-Identifier: MIT
// What the commands of a batch are asked to do.
#pragma once

#include "host/run/extract_options.h"

#include <QString>
#include <QStringList>

struct batch_create_options {
    QString manifest;
    QStringList sources;
    QStringList profiles; // of every source; empty: all
    QStringList tables;   // of every source; empty: all
    QString digests;      // file of sha256sum's form; empty: none
    bool force = false;   // replaces a manifest
};

struct batch_run_options {
    QString manifest;
    QString id;    // empty: by index
    int index = 0; // line of the manifest, counted from 1; 0: SLURM_ARRAY_TASK_ID tells it
    QString out;
    bool force = false;
    extract_options extract; // what does not come from the manifest
};

struct batch_merge_options {
    QString out;
    QString merged;
    bool allow_partial = false;
};

struct batch_status_options {
    QString out;
    bool json = false;
};
