// SPDX-License-Identifier: MIT
// The results of a batch as one result: read one after the other in the manifest's order, in constant memory.
#pragma once

#include <QString>
#include <QVector>

namespace batch {

struct merge_options {
    QString out;                // the folder of the results
    QString merged;             // the result folder to make, or to replace when it is a merged one
    bool allow_partial = false; // goes on without sources that are missing or failed
};

struct named_source {
    QString id;
    QString reason;
};

struct merge_answer {
    int exit_code = 0; // exit_failures: sources are missing, failed or done with failures
    QString error;     // why there is no merged result; empty: it is in place
    qint64 rows = 0;
    int sources = 0;                     // merged ones
    QVector<named_source> missing;       // not done yet
    QVector<named_source> failed;        // without a result, or with one that is not what its run wrote
    QVector<named_source> with_failures; // merged, but evidence could not be read or a step was not finished
};

// Writes below TMPDIR first. cancelled is asked between sources.
merge_answer merge_batch(const merge_options& options, bool (*cancelled)());

} // namespace batch
