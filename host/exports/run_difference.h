// SPDX-License-Identifier: MIT
// What two result databases tell differently, by the contents of their rows: the key of a row does not count, but how
// often a content stands there does.
#pragma once

#include <QString>
#include <QStringList>
#include <QVector>

// Rows that only one of the two has. Where each has some of the same user and source file that tell of the same thing
// (see table_description::told_by), they count as changed, not as one that is gone and one that came.
struct table_difference {
    QString table;
    qint64 removed = 0;
    qint64 added = 0;
    qint64 changed = 0;

    bool is_none() const { return removed == 0 && added == 0 && changed == 0; }
};

// first, second: SQLite files, read only, in memory that does not grow with the rows (SQLite sorts in temporary files).
// tables: of table_descriptions(). Sets error when one cannot be read; the answer is then of no use.
QVector<table_difference> difference_of(const QString& first, const QString& second, const QStringList& tables,
                                        QString& error);
