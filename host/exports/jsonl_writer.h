// SPDX-License-Identifier: MIT
// A file of JSON lines a table: one object a row, its keys in the order of the columns.
#pragma once

#include "host/exports/export_writer.h"
#include "host/exports/whole_files.h"

class jsonl_writer : public export_writer {
public:
    explicit jsonl_writer(export_folder& folder);

    bool begin(const export_table& table) override;
    bool row(const export_row& row) override;
    bool end() override { return file->make_whole(); }
    bool finish() override { return true; }

private:
    export_folder& folder;
    pending_file* file = nullptr; // of the table
    std::string line;
};
