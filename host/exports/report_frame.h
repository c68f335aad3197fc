// SPDX-License-Identifier: MIT
// What stands around the report's sections. A content security policy names style and script by their digests: nothing
// else runs, and no request leaves the file.
#pragma once

#include "host/exports/report_record.h"

#include <string>
#include <vector>

struct report_section {
    std::string id;
    std::string title; // HTML
};

// From the beginning to the first section.
std::string report_head(const report_record& record, const std::vector<report_section>& sections);
// Behind the last section, to the end.
std::string report_foot();

// A section's beginning and end. title: HTML.
std::string section_begin(const std::string& id, const std::string& title, const char* kind = "");
const char* section_end();
