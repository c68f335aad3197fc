// SPDX-License-Identifier: MIT
// Where the rows of a table are from, told once for all rows of one file: rows name it by its number.
#pragma once

#include "host/exports/export_row.h"

#include <string>
#include <unordered_map>
#include <vector>

class report_origins {
public:
    explicit report_origins(const export_table& table);

    // The number of the row's origin, from 1; 0: there are too many of them, the row tells it itself.
    int number_of(const export_row& row);
    // Appends "name value" lines of the row's origin, as HTML.
    void append_values(const export_row& row, std::string& to) const;
    // The list that the numbers lead to, as HTML; "" when there are none.
    std::string list() const;

private:
    std::vector<int> columns; // of the table
    std::string key;          // of the row that was looked at last
    int last = 0;
    std::unordered_map<std::string, int> numbers;
    std::vector<std::string> shown; // by number, from 1
};
