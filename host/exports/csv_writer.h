// SPDX-License-Identifier: MIT
// A CSV file a table (RFC 4180, UTF-8): the columns as they are stored, each time with its ISO 8601 text behind it.
#pragma once

#include "host/exports/export_writer.h"
#include "host/exports/whole_files.h"

class csv_writer : public export_writer {
public:
    // exact: texts and blobs are written byte for byte. Else they are valid UTF-8, and what a spreadsheet would run
    // gets an apostrophe in front.
    csv_writer(export_folder& folder, bool exact);

    bool begin(const export_table& table) override;
    bool row(const export_row& row) override;
    bool end() override;
    bool finish() override { return true; }

private:
    void append_cell(const export_cell& cell, column_kind kind);

    export_folder& folder;
    bool exact;
    pending_file* file = nullptr; // of the table
    std::string line;
    std::string shown; // a cell, before it is quoted
};

// A spreadsheet runs a cell that begins so, unless it is a number.
bool is_formula(std::string_view text);
// Appends a field, in quotes where RFC 4180 asks for them.
void append_csv_field(std::string_view text, std::string& to);
