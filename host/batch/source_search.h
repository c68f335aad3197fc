// SPDX-License-Identifier: MIT
// Finds the sources in folders: Windows trees, images and archives. Reads names, and the first and last bytes of files.
#pragma once

#include "host/health/health_report.h"

#include <QByteArray>
#include <QVector>

namespace batch {

struct found_source {
    QByteArray path; // absolute and native
    QByteArray name; // its path below the folder that was searched, or its own name
    QString type;    // as in the manifest
};

struct search_result {
    QVector<found_source> sources; // in byte order of their paths within what was given, nothing twice
    health_report findings;        // what cannot be read, and notes on what looks like a source and is none
};

// native_path: a folder or a file; real, see real_location(). A folder that holds Users is a source and not searched;
// links below the folder are not followed. A tree whose names are percent-encoded is given by the folder above.
void search_for_sources(const QByteArray& native_path, search_result& found);

} // namespace batch
