// SPDX-License-Identifier: MIT
// What a format is: takes the tables one after the other, each as a stream of rows, and accounts for every row.
#pragma once

#include "host/exports/export_row.h"

#include <QMap>
#include <QString>

// Of one table in one format. rows_out and the numbers of left_out add up to the rows of the table.
struct export_counts {
    qint64 rows_out = 0;
    QMap<QString, qint64> left_out; // reason -> rows
    QMap<QString, qint64> notes;    // what else is to be told -> how often
};

// The operations return false when the output cannot be written; its file says why. Nothing more is asked of the
// writer then.
class export_writer {
public:
    export_writer() = default;
    virtual ~export_writer() = default;
    export_writer(const export_writer&) = delete;
    export_writer& operator=(const export_writer&) = delete;

    virtual bool begin(const export_table& table) = 0; // table lives until end()
    virtual bool row(const export_row& row) = 0;
    virtual bool end() = 0;
    // After the last table: brings all of its files to the disk, still under their temporary names.
    virtual bool finish() = 0;

    // Of the table that began last.
    const export_counts& counts() const { return table_counts; }

protected:
    void start_counts() { table_counts = export_counts(); }
    void count_out() { ++table_counts.rows_out; }
    bool leave_out(const QString& reason) { return ++table_counts.left_out[reason] > 0; }
    void note(const QString& what, qint64 times = 1) { table_counts.notes[what] += times; }

private:
    export_counts table_counts;
};
