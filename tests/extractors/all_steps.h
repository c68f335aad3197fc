// SPDX-License-Identifier: MIT
// The nine steps in the order of a run, by their result tables.
#pragma once

#include "plugin/cortana_winos.h"

#include <QtTest>

struct step {
    const char* table;
    void (cortana_winos::*extract)();
};
const step steps[] = {
    {"time_reminders", &cortana_winos::extract_timetriggers},
    {"place_reminders", &cortana_winos::extract_place_reminders},
    {"contact_triggers", &cortana_winos::extract_contact_triggers},
    {"latest_audio_search", &cortana_winos::extract_audio_search_files},
    {"graphed_cache", &cortana_winos::extract_graph_search_files},
    {"cache_files", &cortana_winos::extract_cache_files},
    {"cookies", &cortana_winos::extract_cookies},
    {"domstore", &cortana_winos::extract_domstore},
    {"searches", &cortana_winos::extract_searches},
};
enum { time_reminders = 0, audio = 3, graph = 4, cache_files = 5, searches = 8 };

// A test's data: one row a step.
inline void add_steps() {
    QTest::addColumn<int>("number");
    for (int number = 0; number <= searches; ++number) {
        QTest::newRow(steps[number].table) << number;
    }
}
