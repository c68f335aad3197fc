// SPDX-License-Identifier: MIT
// Marvin32, the keyed hash that entries of a hive's transaction log carry.
#pragma once

#include <QtEndian>

class marvin_hash {
public:
    // The hash of size bytes. Its high half is the state's high word.
    static quint64 of(const char* data, qint64 size, quint64 seed) {
        marvin_hash state(seed);
        const qint64 words = size / word_size;
        for (qint64 word = 0; word < words; ++word) {
            state.add(qFromLittleEndian<quint32>(data + word * word_size));
        }
        quint32 rest = 0x80;
        for (qint64 at = size - 1; at >= words * word_size; --at) {
            rest = rest << 8 | static_cast<unsigned char>(data[at]);
        }
        state.add(rest);
        state.add(0);
        return quint64{state.high} << 32 | state.low;
    }

private:
    static constexpr qint64 word_size = 4;

    explicit marvin_hash(quint64 seed) : low(static_cast<quint32>(seed)), high(static_cast<quint32>(seed >> 32)) {}
    static quint32 rotated(quint32 word, int bits) { return word << bits | word >> (32 - bits); }
    void add(quint32 word) {
        low += word;
        high ^= low;
        low = rotated(low, 20) + high;
        high = rotated(high, 9) ^ low;
        low = rotated(low, 27) + high;
        high = rotated(high, 19);
    }

    quint32 low;
    quint32 high;
};
