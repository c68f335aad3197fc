// SPDX-License-Identifier: MIT
// The rows of one table as HTML: each is written as it comes, what stands around them when all are known.
#pragma once

#include "host/exports/report_columns.h"
#include "host/exports/report_origins.h"
#include "host/exports/scratch_file.h"

#include <vector>

class report_rows {
public:
    report_rows(const export_table& of_table, scratch_file& to);

    void take(const export_row& row);
    void end(); // no more rows

    const export_table& table() const { return described; }
    qint64 count() const { return rows; }
    // What the ids say -> rows; "" stands for rows that were not looked at. Empty without links.
    const QMap<QByteArray, qint64>& links() const { return link_counts; }

    // What is shown of the table when it has rows. False: it cannot be written.
    bool write(pending_file& to) const;

private:
    void append_cell(const report_column& column, const export_row& row);
    void append_further(const export_row& row);
    bool is_used(int column) const { return used[static_cast<std::size_t>(column)]; }
    bool write_page(std::size_t number, pending_file& to) const;
    std::string page_head(const std::string& range) const;
    std::string legend() const;

    export_table described;
    QVector<report_column> columns;
    report_origins origins;
    scratch_file& scratch;
    std::string html;                  // of the row
    std::vector<bool> used;            // of the report's columns: a row has something in it
    std::vector<std::uint64_t> starts; // of the pages, and at last the end of the last one
    QMap<QByteArray, qint64> link_counts;
    qint64 rows = 0;
    bool left_out_parts = false; // names and paths that another path of their row ends in
};
