// SPDX-License-Identifier: MIT
// Builds one page tree of an ESE file from entries in the order of their keys. Leaves go to the file as they fill up;
// of each level above only the page under construction is held, so memory does not grow with the number of entries.
#pragma once

#include "samples/ese_pages.h"

#include <deque>

class ese_tree {
public:
    // `extra_flags` are set on every page; `root_page` 0 takes any page as the root.
    ese_tree(ese_page_file& file, std::uint32_t object, std::uint32_t extra_flags = 0, std::uint32_t root_page = 0);

    // Keys must be ascending. Key and data together must not exceed ese_page_entries::capacity().
    void add(std::string_view key, std::string_view data);
    // Writes what is left. Returns the number of the root page.
    std::uint32_t finish(std::uint32_t parent_root);
    std::uint32_t pages() const { return page_count; }

private:
    struct level {
        explicit level(std::uint32_t page_size) : entries(page_size) {}
        ese_page_entries entries;
        std::string last_key;
    };

    void end_leaf(std::string_view next_key);
    void add_child(std::size_t height, const std::string& key, std::uint32_t child);
    std::uint32_t write_page(std::size_t height, std::uint32_t number, std::uint32_t next);
    std::uint32_t write_root(std::size_t height, std::uint32_t parent_root);
    std::uint32_t flags_of(std::size_t height) const;

    ese_page_file& output;
    std::uint32_t object_id;
    std::uint32_t common_flags;
    std::uint32_t fixed_root;
    std::uint32_t page_count = 0;
    std::uint32_t leaf_number = 0; // number of the leaf under construction, 0 while it is the first one
    std::uint32_t previous_leaf = 0;
    std::deque<level> levels; // the leaves first
};
