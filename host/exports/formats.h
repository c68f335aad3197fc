// SPDX-License-Identifier: MIT
// The formats by their names.
#pragma once

#include "host/exports/export_writer.h"
#include "host/exports/table_reader.h"
#include "host/exports/whole_files.h"

#include <QStringList>

#include <memory>

// In the order of `cortana export --help`.
const QStringList& format_names();

// What the formats may use; all of it outlives them.
struct writer_means {
    export_folder& folder;
    table_reader& source; // of the rows, and of what else lies in the database
    QString database;     // its file
    bool exact;           // see csv_writer
};

// Null for a name that is not one of them.
std::unique_ptr<export_writer> make_writer(const QString& format, const writer_means& means);
