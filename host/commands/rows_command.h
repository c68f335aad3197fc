// SPDX-License-Identifier: MIT
// The command "rows": lists what a result database holds, for a look without the suite.
#pragma once

#include <QString>
#include <QStringList>

struct rows_options {
    QString result;     // the result folder, or the SQLite file itself
    QStringList tables; // never empty
};

// Returns the exit code. The database is opened for reading only; one that is missing or cannot be read gives
// exit_output.
int run_rows_command(const rows_options& options);
