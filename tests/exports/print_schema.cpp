// SPDX-License-Identifier: MIT
// Prints the create statements of the result database, one a line.
#include "result_db/schema.h"

#include <cstdio>

int main() {
    for (const result_table& table : result_tables()) {
        std::puts(table.create_statement);
    }
    return 0;
}
