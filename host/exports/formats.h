// SPDX-License-Identifier: MIT
// The formats by their names.
#pragma once

#include "host/exports/export_writer.h"
#include "host/exports/whole_files.h"

#include <QStringList>

#include <memory>

// In the order of `cortana export --help`.
const QStringList& format_names();

// Null for a name that is not one of them. exact: see csv_writer. The folder must outlive the writer.
std::unique_ptr<export_writer> make_writer(const QString& format, export_folder& folder, bool exact);
