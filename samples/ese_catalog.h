// SPDX-License-Identifier: MIT
// The catalog of an ESE file: which tables there are, their columns and the roots of their trees.
#pragma once

#include "samples/ese_columns.h"
#include "samples/ese_pages.h"

// Object ids of the catalog and of its copy; those of tables begin at the third.
constexpr std::uint32_t ese_catalog_object = 2;
constexpr std::uint32_t ese_catalog_copy_object = 3;
constexpr std::uint32_t ese_first_table_object = 6;
constexpr std::uint16_t ese_entry_table = 1;
constexpr std::uint16_t ese_entry_column = 2;
constexpr std::uint16_t ese_entry_long_values = 4;

// A tree that is already in the file.
struct ese_stored_tree {
    std::uint32_t object = 0; // 0: none
    std::uint32_t root = 0;
    std::uint32_t pages = 0;
};

class ese_catalog {
public:
    // Tables must come in the order of their object ids.
    void add_table(const std::string& name, const ese_stored_tree& table, const std::vector<ese_placed_column>& columns,
                   const ese_stored_tree& long_values);
    // Writes the catalog and its copy to their fixed pages.
    void write(ese_page_file& file) const;

private:
    struct entry {
        std::string key;
        std::string record;
    };
    void write_tree(ese_page_file& file, std::uint32_t object, std::uint32_t root_page) const;

    std::vector<entry> entries;
};
