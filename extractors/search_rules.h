// SPDX-License-Identifier: MIT
// Where in a hive the two kinds of search records stand, and what a row takes of one.
#pragma once

#include "registry/registry.h"

struct search_rule {
    const char* key_path;
    QByteArray (*searched_bytes)(const registry::my_data_inst_apps& record); // what both cutters work on
    QString (*text)(const QByteArray& bytes);
    QString (*time)(const QByteArray& bytes);
};

extern const search_rule recents_rule; // of the records of text_search_registry
extern const search_rule com_rule;     // of the records of search_from_com
