// SPDX-License-Identifier: MIT
// Texts of the plugin's debug log by which a host tells what a run found and what failed. All texts of the log are part
// of the contract; these are the ones that are looked for.
#pragma once

namespace log_mark {

// Begins the line of each source that discovery lists; the full path follows.
inline constexpr const char* found_source = "---- FILE EXIST--";
// The last line of an extraction that was not cancelled before it began.
inline constexpr const char* extraction_ended = "[pub_extract_artifacts] - END";
// Begins the line that names the table whose creation failed; the failed statement was told before it.
inline constexpr const char* table_creation_failed = " table creation -----FAILED---- ";
// Every message that tells of a failure holds one of these.
inline constexpr const char* failures[] = {"FAILED", "fails   ---", "Unable to open file in graph cache"};

} // namespace log_mark
