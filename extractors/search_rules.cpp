// SPDX-License-Identifier: MIT
// The two rules as data.
#include "extractors/search_rules.h"

#include "extractors/search_text.h"

const search_rule recents_rule{
    "\\SOFTWARE\\Microsoft\\Windows\\CurrentVersion\\Explorer\\RecentDocs",
    [](const registry::my_data_inst_apps& record) { return record.value_data; },
    search_text_in_value,
    search_time_in_value,
};

const search_rule com_rule{
    "SOFTWARE\\Microsoft\\Windows\\CurrentVersion\\Explorer\\FileExts",
    [](const registry::my_data_inst_apps& record) { return record.key_name.toLocal8Bit(); },
    search_text_in_name,
    search_time_in_name,
};
