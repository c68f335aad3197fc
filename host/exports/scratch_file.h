// SPDX-License-Identifier: MIT
// What is written now and copied behind something that is known only later.
#pragma once

#include "host/exports/whole_files.h"

#include <cstdint>

class scratch_file {
public:
    explicit scratch_file(const export_folder& folder);

    // Once a write has failed, the others do nothing.
    void write(std::string_view bytes);
    std::uint64_t size() const { return written; }
    // Appends the bytes from first up to last to the file.
    bool copy(std::uint64_t first, std::uint64_t last, pending_file& to);

    const QString& error() const { return trouble; } // empty while nothing has failed

private:
    void flush();
    bool fail();

    owned_descriptor file;
    std::string buffer;
    std::uint64_t written = 0; // the buffer included
    QString trouble;
};
