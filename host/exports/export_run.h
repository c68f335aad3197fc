// SPDX-License-Identifier: MIT
// One export: each table is read once and goes to all chosen formats at the same time.
#pragma once

#include "host/exports/export_writer.h"

#include <QString>
#include <QStringList>
#include <QTimeZone>
#include <QVector>

#include <functional>

struct export_request {
    QString database;
    QString folder;
    bool folder_is_named = false; // by the user, so it may be a link
    QStringList formats;          // see format_names(); not empty
    QStringList tables;           // of table_descriptions(); not empty
    QTimeZone zone;               // invalid: UTC only
    bool exact = false;           // see csv_writer
};

// What became of one table in one format.
struct table_account {
    QString format;
    QString table;
    qint64 rows = 0; // of the table
    export_counts counts;
};

struct export_outcome {
    QString error; // why there are no new files; empty when all are in place
    bool cancelled = false;
    QVector<table_account> accounts; // by table, then by format; complete only without an error
};

// Files of earlier exports stay as they are unless all new ones are whole. cancelled is asked now and then.
export_outcome run_export(const export_request& request, const std::function<bool()>& cancelled);
