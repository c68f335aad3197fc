// SPDX-License-Identifier: MIT
// One pass over an archive, from its first entry to its last.
#pragma once

#include "host/intake/handles.h"
#include "host/intake/view.h"
#include "source/quiet_open.h"

namespace intake {

class archive_reader {
public:
    // Begins anew with the file, which outlives this object and serves one reader at a time.
    explicit archive_reader(const quiet_file& file);

    // The next entry, valid until the next call; null at the end and when it cannot go on: see problem().
    archive_entry* next();
    // The next bytes of the entry; 0 at its end, -1 when they cannot be read.
    qint64 read(char* to, qint64 count);

    const QString& problem() const { return trouble; } // empty at an end as it should be
    bool knows_format() const;                         // of the archive, once next() was called
    bool is_tar() const;
    bool needs_password() const;
    QByteArray name() const;      // of the entry, as the archive has it; empty when it cannot be told
    view_entry described() const; // the entry, without its name

private:
    void note_problem();

    archive_handle reader;
    archive_entry* entry = nullptr;
    QString trouble;
};

} // namespace intake
