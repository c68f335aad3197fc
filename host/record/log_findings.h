// SPDX-License-Identifier: MIT
// What the debug log of a run tells: found sources, failures, and whether it is whole.
#pragma once

#include <QByteArray>
#include <QString>
#include <QStringList>

struct log_findings {
    qint64 failures = 0;        // see is_failure()
    QStringList first_failures; // the messages of the first ones
    QStringList found_sources;  // paths of the source that the plugin listed for reading
    QString output_trouble;     // the first line telling that the result database cannot be written; empty: none
    int ended_runs = 0;         // runs that logged their end

    // Those of a log that follows this one; a source that was found again counts once.
    void add(const log_findings& later);
};

// The messages that count as one failure each: those with "FAILED", "fails   ---" or "Unable to open file in graph
// cache" in them. The lines that follow with the error text and the query belong to it, and so does the line that
// names the table whose creation failed. A found source's path is never looked at.
bool is_failure(const QString& message);

// Reads the log from the offset to its end. A record that cannot be deciphered is a failure. False: it cannot be read.
bool read_log(const QString& file, qint64 offset, log_findings& findings);
