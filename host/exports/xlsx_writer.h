// SPDX-License-Identifier: MIT
// cortana.xlsx: a sheet a table (several where it has more rows than a sheet takes), every cell a text.
#pragma once

#include "host/exports/export_writer.h"
#include "host/exports/whole_files.h"

#include <xlsxwriter.h>

#include <memory>

class xlsx_writer : public export_writer {
public:
    // rows_in_sheet: with the header; at least 2.
    explicit xlsx_writer(export_folder& folder, qint64 rows_in_sheet = LXW_ROW_MAX);
    ~xlsx_writer() override;

    bool begin(const export_table& table) override;
    bool row(const export_row& row) override;
    bool end() override;
    bool finish() override;

private:
    struct free_workbook { // of one that was not finished
        void operator()(lxw_workbook* unfinished) const { lxw_workbook_free(unfinished); }
    };

    bool begin_sheet();
    void end_sheet();
    // Each fills the next cell of the row.
    bool put(const std::string& text);
    bool put_cell(const export_cell& cell);
    bool put_times(const export_time& time);
    bool fail(lxw_error code);

    pending_file& file;
    QByteArray path;   // of the temporary file, as the library opens it
    QByteArray folder; // for the library's own temporary files
    qint64 most_rows;
    std::unique_ptr<lxw_workbook, free_workbook> book;
    const export_table* table = nullptr;
    lxw_worksheet* sheet = nullptr; // the workbook's
    int sheets_of_table = 0;
    int columns = 0;
    lxw_row_t next_row = 0;
    lxw_col_t next_column = 0;
    QVector<qint64> rows_of_sheets; // with the header
    std::string shown;              // the cell
};

// A text as a cell takes it: what XML cannot hold visible, 32,767 UTF-16 units at most. cut: set when it was longer
// and ends in a mark now.
QString xlsx_cell_text(const QString& text, bool& cut);
