// SPDX-License-Identifier: MIT
// The buffer into which libesedb writes one value: on the stack for values of ordinary size, on the heap for larger.
#pragma once

#include "ese/ese_handles.h"

#include <QByteArray>

#include <cstring>

namespace ese {

// libesedb gives no longer values either; a damaged file must not choose how much memory is taken.
constexpr size_t longest_value = size_t{128} << 20;

// Holds values of up to Capacity bytes without allocating.
template <size_t Capacity>
class value_buffer {
public:
    // cppcheck-suppress uninitMemberVar // only the part in use is ever set, see fill()
    value_buffer() { fixed[0] = '\0'; }
    value_buffer(const value_buffer&) = delete;
    value_buffer& operator=(const value_buffer&) = delete;

    // Lets read(buffer, size) write a value of exactly size bytes into a zeroed buffer. When it fails the value is size
    // zero bytes; a size above the longest value counts as 0.
    template <class Read>
    void fill(size_t size, const Read& read) {
        length = size <= longest_value ? size : 0;
        if (length > Capacity) {
            larger = QByteArray(static_cast<int>(length + 1), Qt::Uninitialized);
            bytes = larger.data();
        }
        // Only the part in use: zeroing 100 KB for each value would cost more than reading it.
        std::memset(bytes, 0, length + 1);
        if (length > 0 && read(reinterpret_cast<uint8_t*>(bytes), length) != success) {
            std::memset(bytes, 0, length);
        }
    }

    size_t size() const { return length; }
    const char* data() const { return bytes; }

    // The bytes before the first zero byte; there is always one behind the value.
    QByteArray text() const { return QByteArray(bytes); }
    // Two lower-case digits for each byte, of all bytes or of those before the first zero byte.
    QByteArray hex() const { return QByteArray::fromRawData(bytes, static_cast<int>(length)).toHex(); }
    QByteArray hex_of_text() const { return QByteArray::fromRawData(bytes, static_cast<int>(qstrlen(bytes))).toHex(); }

private:
    char fixed[Capacity + 1];
    char* bytes = fixed;
    QByteArray larger;
    size_t length = 0;
};

} // namespace ese
