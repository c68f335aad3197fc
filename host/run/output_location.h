// SPDX-License-Identifier: MIT
// Where a run writes, settled and checked before anything is written: never below the source, and only where the
// file system lets us.
#pragma once

#include <QByteArray>
#include <QString>

struct output_location {
    QString result;   // the result folder, every link resolved, ending in "/"; need not exist yet
    QString database; // the result database that the plugin writes
    QString log;      // the debug log
    QString folder;   // the plugin's own, ending in "/"; the result database lies in it
    QString workers;  // the folder, ending in "/", that worker processes write below; ours alone
    QString staged;   // the folder, ending in "/", that a source's wanted parts are copied into; ours alone
    int refused = 0;  // exit_usage or exit_output when nothing may be written
    QString reason;   // why, for the user
};

// source: real location of the source. log: the wished log file, empty for the default one in the result folder.
output_location settle_output(const QString& result, const QString& log, const QByteArray& source);
