// SPDX-License-Identifier: MIT
// The header of an ESE database and its copy.
#pragma once

#include "host/health/file_health.h"

#include <string_view>

// The header and its copy lie within so many bytes, whatever the page size.
constexpr std::size_t ese_largest_head = 65536;

struct ese_header {
    QString problem;      // why libesedb refuses the file; empty: it does not
    QStringList notes;    // of a header without a problem
    ese_health facts;     // page size 0: neither header can be believed
    bool is_read = false; // the facts are there
};

// Judges the first bytes of a file: ese_largest_head of them, or the whole file when it is shorter.
ese_header judge_ese_header(std::string_view head);
