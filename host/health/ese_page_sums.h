// SPDX-License-Identifier: MIT
// Checksums of ESE pages and headers.
#pragma once

#include <QtGlobal>

#include <string_view>

// Pages of this size and more have a longer header and a checksum for each of their quarters.
constexpr quint32 ese_first_large_page = 16384;

// Of a header page, or of its first fields.
quint32 ese_header_sum(std::string_view header);

// Of a block of 2048, 4096 or 8192 bytes: a small page, or a quarter of a large one. Of a page's first block the first
// eight bytes, where the result is kept, count as zero.
quint64 ese_block_sum(std::string_view block, quint32 page_number, bool is_first);

enum class ese_page_sum { right, wrong, of_another_page };

// Judges a whole page (a power of two from 2048 to 32768 bytes) by the kind of checksum that it says it has. A page
// that carries its number and is whole, but has another number, is one of another page.
ese_page_sum judge_ese_page_sum(std::string_view page, quint32 page_number);
