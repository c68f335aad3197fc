// SPDX-License-Identifier: MIT
// What was found in staged copies, told as of the source that they were made from.
#pragma once

#include "host/run/staging_run.h"
#include "host/run/summary.h"

// Of recordings, by the file_path of their rows.
creation_times creation_times_of(const QVector<staged_file>& files);

// Puts the source's paths, digests and times in place of the copies', adds the evidence that only staging has seen, and
// its findings. source: as it was given; staged: the staging folder, ending in "/".
void tell_as_in_source(run_summary& summary, const staging_outcome& outcome, const QString& source,
                       const QString& staged);
