// SPDX-License-Identifier: MIT
// Checksums of ESE files: of the file header, and the error correcting ones of pages.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

// Of the first page of the file, which is to be given whole.
std::uint32_t ese_header_checksum(const std::string& header);

// Of one block of a page: a whole page of up to 8192 bytes, or a quarter of a larger one. `first` leaves out the eight
// bytes at the page's start, where the result belongs. The size must be a multiple of 16.
std::uint64_t ese_block_checksum(const char* block, std::size_t size, std::uint32_t page_number, bool first);

// Puts the checksums of a page (4096 to 32768 bytes) into its header. A page that has them stays as it is.
void ese_set_page_checksums(std::string& page, std::uint32_t page_number);
