// SPDX-License-Identifier: MIT
// The least that cache_files could cost.
#pragma once

// Reads the ten wanted columns of every record of "Container_1" by their indexes and inserts nineteen values for each
// into the table cache_files of the SQLite file, with a statement that is prepared anew for each row. Plain calls of
// both libraries, no text is converted and no path is looked at. The number of rows, or -1.
int run_webcache_floor(const char* database, const char* sqlite_file);
