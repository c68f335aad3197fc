// SPDX-License-Identifier: MIT
// Checksums of ESE files.
#include "samples/ese_checksum.h"

#include "samples/ese_bytes.h"

#include <cstddef>

namespace {

std::uint32_t parity(std::uint32_t word) {
    word ^= word >> 16;
    word ^= word >> 8;
    word ^= word >> 4;
    return 0x6996U >> (word & 0xF) & 1;
}

// The position code of a word: every set bit j counts as j in the lower five bits and as 31 - j in the upper five.
std::uint32_t word_code(std::uint32_t word) {
    std::uint32_t code = 0;
    for (std::uint32_t j = 0; j < 32; ++j) {
        if ((word >> j & 1) != 0) {
            code ^= (31 - j) << 16 | j;
        }
    }
    return code;
}

// Of one block of a page: a whole page of up to 8192 bytes, or a quarter of a larger one. `first` leaves out the eight
// bytes at the page's start, where the result belongs. The size must be a multiple of 16.
std::uint64_t block_checksum(const char* block, std::size_t size, std::uint32_t page_number, bool first) {
    std::uint32_t column[4] = {0, 0, 0, 0};
    std::uint32_t ecc = 0;
    for (std::uint32_t i = 0; i < size / 16; ++i) {
        const char* const words = block + std::size_t{16} * i;
        std::uint32_t group = 0;
        for (std::uint32_t k = first && i == 0 ? 2 : 0; k < 4; ++k) {
            const auto word = get_le<std::uint32_t>(words + std::size_t{4} * k);
            column[k] ^= word;
            group ^= word;
        }
        if (parity(group) != 0) {
            ecc ^= (0x1FF - i) << 23 | i << 7;
        }
    }
    ecc ^= parity(column[0] ^ column[1]) << 22;
    ecc ^= parity(column[0] ^ column[2]) << 21;
    ecc ^= parity(column[2] ^ column[3]) << 6;
    ecc ^= parity(column[1] ^ column[3]) << 5;
    if (size < 8192) {
        ecc &= ~(static_cast<std::uint32_t>(size) << 19);
    }
    const std::uint32_t all = column[0] ^ column[1] ^ column[2] ^ column[3];
    ecc = (ecc & ~0x001F001FU) | word_code(all);
    return static_cast<std::uint64_t>(ecc) << 32 | (all ^ page_number);
}

} // namespace

std::uint32_t ese_header_checksum(const std::string& header) {
    std::uint32_t sum = 0x89ABCDEF;
    for (std::size_t at = 4; at + 4 <= header.size(); at += 4) {
        sum ^= get_le<std::uint32_t>(header.data() + at);
    }
    return sum;
}

void ese_set_page_checksums(std::string& page, std::uint32_t page_number) {
    const bool small = page.size() <= 8192;
    const std::size_t block = small ? page.size() : page.size() / 4;
    // The first quarter last: it contains the checksums of the others.
    for (std::size_t quarter = small ? 1 : 4; quarter-- > 0;) {
        const auto sum = block_checksum(page.data() + quarter * block, block, page_number, quarter == 0);
        put_le(page.data() + (quarter == 0 ? 0 : 32 + 8 * quarter), sum);
    }
}
