// SPDX-License-Identifier: MIT
// Which checker a kind of file has.
#include "host/health/file_checker.h"

#include "host/health/ese_checker.h"
#include "host/health/hive_checker.h"

std::unique_ptr<file_checker> ese_database_checker() {
    return std::make_unique<ese_checker>();
}

std::unique_ptr<file_checker> registry_hive_checker() {
    return std::make_unique<hive_checker>();
}
