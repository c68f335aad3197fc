// SPDX-License-Identifier: MIT
// The check of one evidence file while its bytes pass by once: whoever reads them hands each chunk to the checker, to a
// hash and to whatever else wants them. Nothing is read twice. A checker keeps some twenty bytes of a database's page
// and at most some 200 MB, whatever the file.
#pragma once

#include "host/health/file_health.h"

#include <memory>

class file_checker {
public:
    file_checker() = default;
    virtual ~file_checker() = default;
    file_checker(const file_checker&) = delete;
    file_checker& operator=(const file_checker&) = delete;

    // The next bytes of the file, any number of them; they are not kept. Chunks of a multiple of 64 KiB are not copied.
    virtual void take(const char* bytes, qint64 size) = 0;
    // After the last byte, once. Where the file could not be read to its end the verdict means nothing.
    virtual file_health finish() = 0;
};

// Never null.
std::unique_ptr<file_checker> ese_database_checker();
std::unique_ptr<file_checker> registry_hive_checker();
