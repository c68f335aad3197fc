// SPDX-License-Identifier: MIT
// Checksums of ESE files: of the file header, and the error correcting ones of pages.
#pragma once

#include <cstdint>
#include <string>

// Of the first page of the file, which is to be given whole.
std::uint32_t ese_header_checksum(const std::string& header);

// Puts the checksums of a page (4096 to 32768 bytes) into its header. A page that has them stays as it is.
void ese_set_page_checksums(std::string& page, std::uint32_t page_number);
