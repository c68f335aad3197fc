// SPDX-License-Identifier: MIT
// How many rows each table holds of each profile.
#pragma once

#include "host/exports/export_row.h"

#include <map>
#include <string>
#include <vector>

class report_counts {
public:
    void begin(const export_table& table);
    void take(const export_row& row);

    // A line a profile, a column a table, as HTML.
    std::string html() const;

private:
    using profile = std::pair<std::string, std::string>; // source and account

    std::vector<QByteArray> tables;
    std::map<profile, std::vector<qint64>> counts; // by table
    profile last;
    std::vector<qint64>* last_counts = nullptr; // of the profile that was counted last
};
