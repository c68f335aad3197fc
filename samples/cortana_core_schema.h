// SPDX-License-Identifier: MIT
// The tables of a CortanaCoreDb.dat, as the sample source, the benchmarks and the tests write them.
#pragma once

#include "samples/ese_writer.h"

#include <cstdint>
#include <string>
#include <vector>

struct core_table {
    std::string name;
    std::vector<ese_column> columns; // rows give their values in this order
};

// Id, ReminderId, Kind (1 place, 2 time, 3 contact), CreationTime.
core_table core_triggers();
// Id, Status, SyncStatus, CreationTime, LastUpdateTime, LastAccessTime, CompletionTime, Title, Text.
core_table core_reminders();
// Id, DateTime, RecurrenceUnit, RuleInstanceId, RuleStatus, RuleErrorCode, RuleErrorMessage, LastTriggerTime.
core_table core_time_triggers();
// Id, Latitude, Longitude, Radius, StartDate, Name.
core_table core_location_triggers();
// Id, RuleInstanceId, RuleStatus, RuleErrorCode, AggregateId, ContactHandle, ContactName, RuleErrorMessage.
core_table core_contact_triggers();

// Unix seconds as the tables keep times: 100 ns since 1601-01-01 UTC.
constexpr std::int64_t filetime_of(std::int64_t unix_seconds) {
    return unix_seconds * 10000000 + 116444736000000000;
}
