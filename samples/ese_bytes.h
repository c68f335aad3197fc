// SPDX-License-Identifier: MIT
// Numbers in byte buffers, for the ESE writer. No bounds are checked here: the callers know their sizes.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

// Least significant byte first.
template <typename T>
void append_le(std::string& buffer, T value) {
    for (std::size_t i = 0; i < sizeof(T); ++i) {
        buffer.push_back(static_cast<char>(static_cast<std::uint64_t>(value) >> (8 * i) & 0xFF));
    }
}

template <typename T>
void put_le(char* at, T value) {
    for (std::size_t i = 0; i < sizeof(T); ++i) {
        at[i] = static_cast<char>(static_cast<std::uint64_t>(value) >> (8 * i) & 0xFF);
    }
}

template <typename T>
T get_le(const char* at) {
    std::uint64_t value = 0;
    for (std::size_t i = 0; i < sizeof(T); ++i) {
        value |= static_cast<std::uint64_t>(static_cast<unsigned char>(at[i])) << (8 * i);
    }
    return static_cast<T>(value);
}

// Most significant byte first: the order in which keys compare.
template <typename T>
void append_be(std::string& buffer, T value) {
    for (std::size_t i = sizeof(T); i-- > 0;) {
        buffer.push_back(static_cast<char>(static_cast<std::uint64_t>(value) >> (8 * i) & 0xFF));
    }
}
