// SPDX-License-Identifier: MIT
// l2tcsv.csv: the 17 columns of log2timeline's CSV, times in UTC.
#pragma once

#include "host/exports/timeline_writer.h"

class l2tcsv_writer : public timeline_writer {
public:
    // exact: cells that a spreadsheet would run get no apostrophe.
    l2tcsv_writer(export_folder& folder, bool exact);

protected:
    bool append_event(const timeline_event& event, std::string& to) override;

private:
    void append(std::string_view utf8, std::string& line);

    bool exact;
};
