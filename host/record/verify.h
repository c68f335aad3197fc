// SPDX-License-Identifier: MIT
// Whether what a run record tells of is still what it was.
#pragma once

#include <QString>
#include <QStringList>
#include <QVector>

struct verified_file {
    QString path;       // as it was looked for
    QString difference; // empty: the same as recorded
};

struct verification {
    QString unreadable;           // why the record itself cannot be read; empty: it can
    QVector<verified_file> files; // in the record's order: what the run wrote, then the evidence
    qint64 differences = 0;
};

// Reads the record and computes the digest of each file that it names anew. source: the folder where the evidence lies
// now, in place of the recorded one; empty: evidence is not looked at. Nothing is written. A file without a recorded
// digest, or whose recorded name is not UTF-8, cannot be verified and counts as a difference.
verification verify_run(const QString& record_file, const QString& source);
