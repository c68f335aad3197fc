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
    bool is_leaf;
};

// Object id of a table, looked up in the catalog by its exact name.
std::uint32_t ese_table_object(const std::filesystem::path& file, const std::string& table);
// The pages of an object's tree in the order of the file.
std::vector<ese_page> ese_pages_of(const std::filesystem::path& file, std::uint32_t object);

void ese_truncate(const std::filesystem::path& file, std::uint64_t size);
void ese_flip_bit(const std::filesystem::path& file, std::uint64_t offset, unsigned bit);
void ese_set_byte(const std::filesystem::path& file, std::uint64_t offset, std::uint8_t value);
void ese_zero_page(const std::filesystem::path& file, std::uint32_t page);
