// SPDX-License-Identifier: MIT
// Brings staged copies of unfinished registry hives to the state that their staged logs tell of.
#pragma once

#include "host/intake/staging.h"

namespace intake {

// Replaces the copies for which logs apply, notes that in their entries, and adds what there is to say about the logs
// as notes. staging: the folder that they were staged into. The copy as it was stays beside it, under as_found().
void apply_staged_logs(const QByteArray& staging, staging_result& result, const staging_hearer& hearer = {});

// Where the copy of a hive stays as it was before its logs were applied.
inline QByteArray as_found(const QByteArray& path) {
    return path + ".as_found";
}

} // namespace intake
