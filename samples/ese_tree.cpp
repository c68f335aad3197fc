// SPDX-License-Identifier: MIT
// Builds one page tree of an ESE file.
#include "samples/ese_tree.h"

#include "samples/ese_bytes.h"
#include "samples/ese_writer.h"

#include <algorithm>

namespace {

// The shortest key above `below` that is not above `next`.
std::string separating_key(std::string_view below, std::string_view next) {
    const auto same = std::mismatch(below.begin(), below.end(), next.begin(), next.end());
    return std::string(next.begin(), same.second == next.end() ? same.second : same.second + 1);
}

} // namespace

ese_tree::ese_tree(ese_page_file& file, std::uint32_t object, std::uint32_t extra_flags, std::uint32_t root_page)
    : output(file), object_id(object), common_flags(extra_flags), fixed_root(root_page) {
    levels.emplace_back(file.page_size());
}

void ese_tree::add(std::string_view key, std::string_view data) {
    const std::size_t size = key.size() + data.size();
    if (size > ese_page_entries::capacity(output.page_size())) {
        throw ese_error("ESE writer: entry is larger than a page");
    }
    level& leaves = levels.front();
    if (!leaves.entries.fits(size)) {
        end_leaf(key);
    }
    leaves.entries.add(key, data);
    leaves.last_key.assign(key);
}

void ese_tree::end_leaf(std::string_view next_key) {
    const std::string key = separating_key(levels.front().last_key, next_key);
    const std::uint32_t number = leaf_number != 0 ? leaf_number : output.allocate();
    leaf_number = output.allocate();
    add_child(1, key, write_page(0, number, leaf_number));
}

void ese_tree::add_child(std::size_t height, const std::string& key, std::uint32_t child) {
    if (levels.size() == height) {
        levels.emplace_back(output.page_size());
    }
    level& branch = levels[height];
    if (!branch.entries.fits(key.size() + sizeof(child))) {
        const std::string last_key = branch.last_key;
        add_child(height + 1, last_key, write_page(height, output.allocate(), 0));
    }
    std::string data;
    append_le(data, child);
    branch.entries.add(key, data);
    branch.last_key = key;
}

std::uint32_t ese_tree::flags_of(std::size_t height) const {
    if (height == 0) {
        return common_flags | ese_flag_leaf;
    }
    return common_flags | (height == 1 ? ese_flag_above_leaves : 0);
}

// Writes the page under construction as one that is not the root, and empties it.
std::uint32_t ese_tree::write_page(std::size_t height, std::uint32_t number, std::uint32_t next) {
    ese_page_place place;
    place.object = object_id;
    place.flags = flags_of(height);
    if (height == 0) {
        place.previous = previous_leaf;
        place.next = next;
        previous_leaf = number;
    }
    ese_page_entries& entries = levels[height].entries;
    output.write(number, entries.compose(number, place));
    entries.clear();
    ++page_count;
    return number;
}

std::uint32_t ese_tree::write_root(std::size_t height, std::uint32_t parent_root) {
    const std::uint32_t number = fixed_root != 0 ? fixed_root : output.allocate();
    ese_page_place place;
    place.object = object_id;
    place.flags = flags_of(height) | ese_flag_root;
    place.tree_pages = ++page_count;
    place.parent = parent_root;
    output.write(number, levels[height].entries.compose(number, place));
    return number;
}

std::uint32_t ese_tree::finish(std::uint32_t parent_root) {
    for (std::size_t height = 0;; ++height) {
        // A lone page that is too full for a root's own value becomes the only child of one.
        if (height + 1 == levels.size() && levels[height].entries.fits_root()) {
            return write_root(height, parent_root);
        }
        const std::uint32_t number = height == 0 && leaf_number != 0 ? leaf_number : output.allocate();
        // The last child of every level has no upper bound, hence the empty key.
        add_child(height + 1, {}, write_page(height, number, 0));
    }
}
