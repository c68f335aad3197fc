// SPDX-License-Identifier: MIT
// What the timeline formats share: one event for each column of a row that holds a time, one line for each event, all
// tables in one file.
#pragma once

#include "host/exports/export_writer.h"
#include "host/exports/whole_files.h"

struct timeline_event {
    const export_row& row;
    const column_description& column;
    const export_time& time;
    const std::string& message; // what the row is, in valid UTF-8: "cookies: https://... (row 7)"
    bool is_first;              // of the row
};

class timeline_writer : public export_writer {
public:
    timeline_writer(export_folder& folder, const char* file_name, std::string_view first_line);

    bool begin(const export_table& table) override;
    bool row(const export_row& row) override;
    bool end() override { return !file.failed(); }
    bool finish() override { return file.make_whole(); }

protected:
    // Appends the event's line; false: the format cannot hold its time.
    virtual bool append_event(const timeline_event& event, std::string& to) = 0;

private:
    pending_file& file;
    std::string lines;
    std::string message;
};

// The text with control characters and direction marks visible, so that it stays one line of what it seems to be.
std::string in_one_line(std::string_view utf8);
