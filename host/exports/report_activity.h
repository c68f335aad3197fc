// SPDX-License-Identifier: MIT
// When something happened: the times of all rows, counted by day and table, and drawn.
#pragma once

#include "host/exports/export_row.h"

#include <map>
#include <string>
#include <unordered_map>
#include <vector>

// The events of one table by day since 1970. In bounded memory: of very many different days several go together.
class day_counts {
public:
    void add(qint64 unix_seconds);
    int days_together() const { return width; }
    // The first of the days that go together -> events.
    std::map<qint64, qint64> by_day() const;

private:
    void widen();

    std::unordered_map<qint64, qint64> counts; // by the number of the days that go together
    int width = 1;
};

class report_activity {
public:
    void begin(const export_table& table);
    void take(const export_row& row);

    // The picture and the same as a table, as HTML.
    std::string html() const;

private:
    struct table_days {
        std::string title;
        day_counts days;
    };
    std::vector<table_days> tables;
};
