// SPDX-License-Identifier: MIT
// The slot of a virtual member function, for tests of orders that are contracts.
#pragma once

#include <QtGlobal>

#include <cstring>

// In the Itanium C++ ABI a pointer to a virtual member function begins with 1 + its byte offset in the virtual table;
// on ARM the 1 stands in the word behind it.
template <class Member>
int slot_of(Member member) {
    quintptr words[2];
    static_assert(sizeof(member) == sizeof(words), "two words: offset and adjustment");
    std::memcpy(words, &member, sizeof(words));
#if defined(__arm__) || defined(__aarch64__)
    const quintptr offset = words[0];
#else
    const quintptr offset = words[0] - 1;
#endif
    return static_cast<int>(offset / sizeof(void*));
}
