// SPDX-License-Identifier: MIT
// Damages ESE files on purpose, and finds the pages worth damaging. Page n lies at offset (n + 1) * page size.
// Everything throws ese_error when the file cannot be read or written, or when an offset or page lies outside it.
#pragma once

#include <cstdint>
#include <filesystem>
#include <string>
#include <vector>

struct ese_page {
    std::uint32_t number;
    bool is_root;
    bool is_leaf;
    std::uint16_t tags; // the page's own first one included
};

// Page size from the header.
std::uint32_t ese_page_size(const std::filesystem::path& file);
// Object id of a table, and of its long values (0: the table has none); looked up in the catalog by its exact name.
std::uint32_t ese_table_object(const std::filesystem::path& file, const std::string& table);
std::uint32_t ese_long_value_object(const std::filesystem::path& file, const std::string& table);
// The pages of an object's tree in the order of the file. 2 is the catalog.
std::vector<ese_page> ese_pages_of(const std::filesystem::path& file, std::uint32_t object);

void ese_truncate(const std::filesystem::path& file, std::uint64_t size);
void ese_flip_bit(const std::filesystem::path& file, std::uint64_t offset, unsigned bit);
void ese_set_byte(const std::filesystem::path& file, std::uint64_t offset, std::uint8_t value);
void ese_zero_page(const std::filesystem::path& file, std::uint32_t page);
void ese_copy_page(const std::filesystem::path& file, std::uint32_t from, std::uint32_t over);
// Makes the checksums of both header copies right again, after a change of header bytes that is to be seen by readers.
void ese_repair_header(const std::filesystem::path& file);
