// SPDX-License-Identifier: MIT
// The least that time_reminders could cost.
#pragma once

// Reads every value of "Triggers", "Reminders" and "TimeTriggers" by its index and inserts thirteen values for each row
// of the last into the table time_reminders of the SQLite file, with a statement that is prepared anew for each row.
// Plain calls of both libraries; nothing is paired, no time is converted. The number of rows, or -1.
int run_reminders_floor(const char* database, const char* sqlite_file);
