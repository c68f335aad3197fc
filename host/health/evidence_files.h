// SPDX-License-Identifier: MIT
// Opens evidence files for reading, never for writing, and never anything but a regular file: a named pipe in a
// source must not hold the program up.
#pragma once

#include "host/health/evidence_paths.h"
#include "source/places.h"

#include <functional>

// Reads the whole database or hive and reports what is wrong with it; one that is not there is nothing to report. Stops
// without a verdict when cancelled() says so.
void check_evidence_file(const QByteArray& file, evidence_kind kind, evidence_paths& paths,
                         const std::function<bool()>& cancelled);

// Reports what of a folder and all below it cannot be listed or opened. Stops when cancelled() says so.
void check_evidence_tree(const QByteArray& top, evidence_paths& paths, const std::function<bool()>& cancelled);
