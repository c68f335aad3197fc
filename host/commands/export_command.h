// SPDX-License-Identifier: MIT
// The command "export": writes the rows of a result database in other formats.
#pragma once

#include <QString>
#include <QStringList>
#include <QTimeZone>

struct export_options {
    QString result;      // the result folder, or the SQLite file itself
    QString folder;      // empty: "exports" beside the database
    QStringList formats; // never empty
    QStringList tables;  // never empty
    QTimeZone zone;      // invalid: none besides UTC
    bool exact = false;  // CSV cells byte for byte
    bool json = false;
};

// Returns the exit code. The database is opened for reading only; exit_output when it cannot be read or a file cannot
// be written, and then no file of an earlier export is changed.
int run_export_command(const export_options& options);
