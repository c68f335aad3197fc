// SPDX-License-Identifier: MIT
// An archive as a view: zip, 7z, and tar with its compressions. It is passed over twice: once for what is in it, once
// for the wanted files. No entry is ever written anywhere by its own name.
#pragma once

#include "host/health/health_report.h"
#include "host/intake/view.h"

#include <memory>

namespace intake {

struct archive_limit {
    qint64 most_entries = 250000;              // an index of that many takes about 80 MB, the library as much
    qint64 most_name_bytes = qint64{64} << 20; // all paths together
    qint64 largest_entry = qint64{64} << 30;   // bytes of one file
};

struct opened_archive {
    std::unique_ptr<source_view> view; // null: see problem
    QString problem;
    bool is_archive = false; // the library knew its format
    // Entries that lead elsewhere, stand there twice, are encrypted or too large; an archive that ends early.
    health_report findings;
};
opened_archive open_archive_view(const QByteArray& native_path, const archive_limit& limit);

} // namespace intake
