// SPDX-License-Identifier: MIT
// The error correcting checksum knows each 16-byte group of odd parity by its index. Bit k of the exclusive or of these
// indexes is the parity of all groups whose index has bit k, so halving a block again and again, the upper half onto
// the lower one, gives the bits one after the other, at the speed of an exclusive or over the block twice.
#include "host/health/ese_page_sums.h"

#include "host/health/bytes.h"

#include <cstring>

namespace {

constexpr quint32 start_of_sums = 0x89abcdef;
constexpr quint32 error_correcting_flag = 0x2000;
constexpr std::size_t words_of_group = 2; // of 64 bits

bool is_odd(quint64 bits) {
    return __builtin_parityll(bits) != 0;
}

template <std::size_t groups>
quint32 odd_indexes(quint64* words) {
    if constexpr (groups == 1) {
        return 0;
    } else {
        constexpr std::size_t half = groups / 2 * words_of_group;
        quint64 upper = 0;
        for (std::size_t i = 0; i < half; ++i) {
            upper ^= words[half + i];
            words[i] ^= words[half + i];
        }
        constexpr auto bit = static_cast<quint32>(groups / 2);
        return (is_odd(upper) ? bit : 0) | odd_indexes<groups / 2>(words);
    }
}

struct folded_block {
    quint32 odd_indexes = 0; // those of the groups of odd parity, combined by exclusive or
    char group[16];          // all groups, combined by exclusive or
};

// The first halving, out of the block; the others are done in place.
template <std::size_t size>
folded_block fold(const char* __restrict block) {
    constexpr std::size_t half = size / 2 / sizeof(quint64);
    quint64 words[half];
    quint64 upper = 0;
    for (std::size_t i = 0; i < half; ++i) {
        quint64 low = 0;
        quint64 high = 0;
        std::memcpy(&low, block + i * sizeof(quint64), sizeof(quint64));
        std::memcpy(&high, block + (half + i) * sizeof(quint64), sizeof(quint64));
        upper ^= high;
        words[i] = low ^ high;
    }
    constexpr std::size_t groups = half / words_of_group;
    folded_block result;
    result.odd_indexes = (is_odd(upper) ? static_cast<quint32>(groups) : 0) | odd_indexes<groups>(words);
    std::memcpy(result.group, words, sizeof(result.group));
    return result;
}

folded_block fold_block(std::string_view block) {
    switch (block.size()) {
    case 2048:
        return fold<2048>(block.data());
    case 4096:
        return fold<4096>(block.data());
    default:
        return fold<8192>(block.data());
    }
}

// The positions of the set bits, combined by exclusive or: in the lower five bits counted from below, in bits 16 to 20
// from above.
quint32 position_code(quint32 word) {
    constexpr quint32 masks[] = {0xaaaaaaaa, 0xcccccccc, 0xf0f0f0f0, 0xff00ff00, 0xffff0000};
    quint32 positions = 0;
    for (int bit = 0; bit < 5; ++bit) {
        positions |= is_odd(word & masks[bit]) ? 1U << bit : 0U;
    }
    return (is_odd(word) ? positions ^ 31 : positions) << 16 | positions;
}

bool is_large(std::string_view page) {
    return page.size() >= ese_first_large_page;
}

bool has_old_sum(std::string_view page) {
    return !is_large(page) && (number_at<quint32>(page, 36) & error_correcting_flag) == 0;
}

bool is_small_page_right(std::string_view page, quint32 number) {
    // What the index bits that a block of 2048 bytes does not need hold is left open.
    const quint64 compared = page.size() == 2048 ? 0x3fffffffffffffff : ~quint64{0};
    return ((ese_block_sum(page, number, true) ^ number_at<quint64>(page, 0)) & compared) == 0;
}

bool are_quarters_right(std::string_view page, quint32 number) {
    const std::size_t quarter = page.size() / 4;
    for (std::size_t i = 0; i < 4; ++i) {
        const std::size_t kept_at = i == 0 ? 0 : 32 + 8 * i;
        if (ese_block_sum(page.substr(i * quarter, quarter), number, i == 0) != number_at<quint64>(page, kept_at)) {
            return false;
        }
    }
    return true;
}

bool is_right(std::string_view page, quint32 number) {
    if (has_old_sum(page)) {
        return number_at<quint32>(page, 4) == number && ese_header_sum(page) == number_at<quint32>(page, 0);
    }
    return is_large(page) ? are_quarters_right(page, number) : is_small_page_right(page, number);
}

// The page number that a large page, or one with a checksum of the old kind, carries; 0: it carries none.
quint32 number_told(std::string_view page) {
    if (is_large(page)) {
        return number_at<quint32>(page, 64);
    }
    return has_old_sum(page) ? number_at<quint32>(page, 4) : 0;
}

} // namespace

quint32 ese_header_sum(std::string_view header) {
    return xor_of_words(part_of(header, 4, header.size()), start_of_sums);
}

quint64 ese_block_sum(std::string_view block, quint32 page_number, bool is_first) {
    const folded_block folded = fold_block(block);
    const std::string_view group(folded.group, sizeof(folded.group));
    quint32 column[4];
    for (std::size_t i = 0; i < 4; ++i) {
        const quint32 left_out = is_first && i < 2 ? number_at<quint32>(block, i * 4) : 0;
        column[i] = number_at<quint32>(group, i * 4) ^ left_out;
    }
    const quint32 all = column[0] ^ column[1] ^ column[2] ^ column[3];
    const quint32 indexes = folded.odd_indexes;
    const auto parity_bit = [](quint32 bits, int at) { return is_odd(bits) ? 1U << at : 0U; };
    quint32 code = (is_odd(all) ? indexes ^ 0x1ff : indexes) << 23 | indexes << 7;
    code |= parity_bit(column[0] ^ column[1], 22) | parity_bit(column[0] ^ column[2], 21);
    code |= parity_bit(column[2] ^ column[3], 6) | parity_bit(column[1] ^ column[3], 5);
    if (block.size() < 8192) {
        code &= ~(static_cast<quint32>(block.size()) << 19);
    }
    code |= position_code(all);
    return quint64{code} << 32 | (all ^ page_number);
}

ese_page_sum judge_ese_page_sum(std::string_view page, quint32 page_number) {
    const quint32 told = number_told(page);
    const bool is_other = told != 0 && told != page_number;
    if (is_right(page, is_other ? told : page_number)) {
        return is_other ? ese_page_sum::of_another_page : ese_page_sum::right;
    }
    return ese_page_sum::wrong;
}
