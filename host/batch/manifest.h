// SPDX-License-Identifier: MIT
// The manifest of a batch: JSON lines, one source each. Rules over bytes alone; docs/batch_manifest.schema.json says
// the same of a line for other programs.
#pragma once

#include <QByteArray>
#include <QString>
#include <QStringList>
#include <QVector>

namespace batch {

struct manifest_source {
    QString id;           // names files, so see is_id()
    QString path;         // absolute
    QString type;         // "folder", "image" or "archive"
    int number = 0;       // 1 or more; rows carry it as SourceN
    int volume = 0;       // of an image; 0: the one with a Windows tree
    QStringList profiles; // NAME or NAME=DOMAIN_USER; empty: all
    QStringList tables;   // in the plugin's order; empty: all
    QString sha256;       // of the evidence, 64 small hexadecimal digits; empty: not known
};

// One to 100 of A-Z a-z 0-9 . _ -, not beginning with "." or "-": fit for a file's name and for a word of a command
// line.
bool is_id(const QString& text);

// The line without its line break. problem: what is wrong with it, else empty.
manifest_source source_of_line(const QByteArray& line, QString& problem);
// Ends in a line break. Keys stand in the order of the alphabet, so equal sources give equal lines.
QByteArray line_of(const manifest_source& source);

struct manifest {
    QVector<manifest_source> sources;
    QStringList problems; // "line 3: ..."; at most 100
};
// Every line must be a source; ids (in any upper and lower case, since some shared folders know none) and numbers are
// there once. Lines are counted from 1.
manifest read_manifest(const QByteArray& text);

// Only the one line is looked at closely, so that a long manifest costs a run little. A null text: there is none.
QByteArray line_with_id(const QByteArray& text, const QString& id);
QByteArray line_at(const QByteArray& text, int index); // counted from 1

} // namespace batch
