// SPDX-License-Identifier: MIT
// The tables of a WebCacheV01.dat, as the sample source, the benchmarks and the tests write them.
#pragma once

#include "samples/ese_writer.h"

#include <cstdint>
#include <string>
#include <vector>

// One row of "Containers"; what is not named here gets ordinary values.
struct webcache_container {
    std::int64_t id;
    ese_value name;
    ese_value directory;          // Windows spelling, ending in a backslash
    ese_value secure_directories; // names of 8 characters side by side
};

// One row of a "Container_" table; what is not named here gets ordinary values. Times are FILETIME counts.
struct webcache_entry {
    ese_value filename;
    ese_value url;
    ese_value secure_directory = 0; // one-based, 0: none
    ese_value file_size = 0;
    ese_value access_count = 1;
    ese_value sync_time = 0;
    ese_value creation_time = 0;
    ese_value expiry_time = 0;
    ese_value modified_time = 0;
    ese_value accessed_time = 0;
};

std::vector<ese_column> webcache_container_columns();
std::vector<ese_column> webcache_entry_columns();

ese_row webcache_container_row(const webcache_container& container);
ese_row webcache_entry_row(const webcache_entry& entry, std::int64_t entry_id, std::int64_t container_id);

// The whole tables.
void write_webcache_containers(ese_writer& file, const std::vector<webcache_container>& containers);
void write_webcache_entries(ese_writer& file, std::int64_t container_id, const std::vector<webcache_entry>& entries);
