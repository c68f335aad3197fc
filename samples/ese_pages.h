// SPDX-License-Identifier: MIT
// Pages of an ESE file under construction: the file that takes them, and one page filled entry by entry.
#pragma once

#include <cstdint>
#include <filesystem>
#include <fstream>
#include <string>
#include <string_view>
#include <vector>

// Page numbers with a fixed meaning; trees of tables begin behind them.
constexpr std::uint32_t ese_catalog_page = 4;
constexpr std::uint32_t ese_catalog_copy_page = 24;

// Bytes of a page's own header. Pages of 16384 bytes and more have a longer one, and other details as well.
constexpr bool ese_is_large(std::uint32_t page_size) {
    return page_size >= 16384;
}
constexpr std::uint32_t ese_page_header_size(std::uint32_t page_size) {
    return ese_is_large(page_size) ? 80 : 40;
}

constexpr std::uint32_t ese_flag_root = 0x1;
constexpr std::uint32_t ese_flag_leaf = 0x2;
constexpr std::uint32_t ese_flag_above_leaves = 0x4;
constexpr std::uint32_t ese_flag_long_values = 0x80;

// The file. Pages that are never written are zero.
class ese_page_file {
public:
    ese_page_file(const std::filesystem::path& path, std::uint32_t size);

    std::uint32_t page_size() const { return size_of_page; }
    std::uint32_t allocate() { return next_page++; }
    // The page gets its checksums here.
    void write(std::uint32_t number, std::string& page);
    void write_header(std::uint32_t highest_object);
    void close();

private:
    void write_at(std::uint64_t offset, const std::string& page);

    std::ofstream stream;
    std::uint32_t size_of_page;
    std::uint32_t next_page = ese_catalog_copy_page + 1;
    std::uint64_t position = 0;
};

// Where a page stands in its tree.
struct ese_page_place {
    std::uint32_t object = 0;
    std::uint32_t flags = 0;
    std::uint32_t previous = 0; // neighbours of a leaf, 0 for others
    std::uint32_t next = 0;
    // Of a root only.
    std::uint32_t tree_pages = 0;
    std::uint32_t parent = 0;
};

// The entries of one page. Whether they become a root, which has 16 bytes less for them, is decided at the end.
class ese_page_entries {
public:
    explicit ese_page_entries(std::uint32_t page_size);

    // Bytes of key and data together that an otherwise empty page takes when it is not a root.
    static std::uint32_t capacity(std::uint32_t page_size) {
        return page_size - ese_page_header_size(page_size) - 4 - 4 - 2;
    }
    bool empty() const { return sizes.empty(); }
    bool fits(std::size_t key_and_data) const;
    bool fits_root() const;
    void add(std::string_view key, std::string_view data); // must fit
    void clear();

    // The page without its checksums, valid until the next call.
    std::string& compose(std::uint32_t number, const ese_page_place& place);

private:
    std::size_t used() const { return content.size() + 4 * sizes.size(); }
    void put_tag(std::size_t index, std::size_t size, std::size_t offset);

    std::uint32_t size_of_page;
    std::uint32_t header_size;
    std::string content;
    std::vector<std::uint16_t> sizes;
    std::string page;
};
