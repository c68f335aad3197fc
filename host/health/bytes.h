// SPDX-License-Identifier: MIT
// Numbers in the bytes of evidence. Every place is checked here, so that a parser need not do it again.
#pragma once

#include <QtEndian>

#include <cstddef>
#include <string_view>

// The number at offset, least significant byte first; 0 when it does not lie wholly inside.
template <class number>
number number_at(std::string_view bytes, std::size_t offset) {
    if (offset > bytes.size() || bytes.size() - offset < sizeof(number)) {
        return 0;
    }
    return qFromLittleEndian<number>(bytes.data() + offset);
}

// Up to size bytes from offset; fewer, or none, where the bytes end before.
inline std::string_view part_of(std::string_view bytes, std::size_t offset, std::size_t size) {
    return offset > bytes.size() ? std::string_view() : bytes.substr(offset, size);
}

// The 32-bit words of bytes combined by exclusive or; a rest of less than a word does not count.
inline quint32 xor_of_words(std::string_view bytes, quint32 start) {
    for (std::size_t offset = 0; offset + sizeof(quint32) <= bytes.size(); offset += sizeof(quint32)) {
        start ^= number_at<quint32>(bytes, offset);
    }
    return start;
}
