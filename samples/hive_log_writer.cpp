// SPDX-License-Identifier: MIT
// Changed pages are found by comparing the two states; what the later one has more counts as changed.
#include "samples/hive_log_writer.h"

#include <QVector>
#include <QtEndian>

namespace {

constexpr int header_size = 0x1000;
constexpr int sector = 512;
constexpr int entry_header_size = 40;

constexpr int at_bins_size = 40; // in the base block
constexpr int at_checksum = 508;
constexpr int at_entry_size = 4; // in an entry
constexpr int at_first_hash = 24;
constexpr int at_second_hash = 32;

quint32 number(const QByteArray& bytes, int offset) {
    return qFromLittleEndian<quint32>(bytes.mid(offset, 4).leftJustified(4, '\0').constData());
}

template <class Number>
void put(QByteArray& bytes, int offset, Number value) {
    if (offset < 0 || offset + static_cast<int>(sizeof(value)) > bytes.size()) {
        qFatal("offset %d is outside the log", offset);
    }
    qToLittleEndian(value, bytes.data() + offset);
}

template <class Number>
void append(QByteArray& bytes, Number value) {
    bytes.append(QByteArray(sizeof(value), '\0'));
    put(bytes, bytes.size() - static_cast<int>(sizeof(value)), value);
}

void fill_up(QByteArray& bytes) {
    bytes.append(QByteArray((sector - bytes.size() % sector) % sector, '\0'));
}

quint32 turned_left(quint32 value, int bits) {
    return (value << bits) + (value >> (32 - bits));
}

quint64 hash_of(QByteArray bytes) {
    bytes.append('\x80');
    bytes.append(QByteArray((4 - bytes.size() % 4) % 4 + 4, '\0'));
    quint32 state[2] = {0x7a4e55c5, 0x82ef4d88};
    for (int at = 0; at < bytes.size(); at += 4) {
        state[0] = state[0] + number(bytes, at);
        state[1] = state[1] ^ state[0];
        state[0] = turned_left(state[0], 20);
        state[0] = state[0] + state[1];
        state[1] = turned_left(state[1], 9);
        state[1] = state[1] ^ state[0];
        state[0] = turned_left(state[0], 27);
        state[0] = state[0] + state[1];
        state[1] = turned_left(state[1], 19);
    }
    return quint64{state[1]} << 32 | state[0];
}

// The changed pages' offsets in the bins.
QVector<int> changed_pages(const QByteArray& before, const QByteArray& after, int page_size) {
    QVector<int> changed;
    for (int at = header_size; at < after.size(); at += page_size) {
        if (before.mid(at, page_size) != after.mid(at, page_size)) {
            changed.append(at - header_size);
        }
    }
    return changed;
}

} // namespace

QByteArray hive_log::with_number(QByteArray file, int offset, quint32 value) {
    put(file, offset, value);
    return file;
}

QByteArray hive_log::with_sequences(QByteArray file, quint32 primary, quint32 secondary) {
    return sealed(with_number(with_number(std::move(file), 4, primary), 8, secondary));
}

QByteArray hive_log::sealed(QByteArray file) {
    quint32 checksum = 0;
    for (int at = 0; at < at_checksum; at += 4) {
        checksum ^= number(file, at);
    }
    put(file, at_checksum, checksum == 0 ? 1 : checksum == 0xffffffff ? 0xfffffffe : checksum);
    int at = sector;
    while (file.mid(at, 4) == "HvLE") {
        const quint32 size = number(file, at + at_entry_size);
        if (size < entry_header_size || size > static_cast<quint32>(file.size() - at)) {
            break;
        }
        put(file, at + at_first_hash,
            hash_of(file.mid(at + entry_header_size, static_cast<int>(size) - entry_header_size)));
        put(file, at + at_second_hash, hash_of(file.mid(at, at_second_hash)));
        at += static_cast<int>(size);
    }
    return file;
}

QByteArray hive_log::log_header(const QByteArray& hive, quint32 type, quint32 sequence) {
    constexpr int at_type = 28;
    return with_sequences(with_number(hive.left(sector), at_type, type), sequence, sequence);
}

QByteArray hive_log::log_entry(const QByteArray& before, const QByteArray& after, quint32 sequence) {
    const QVector<int> changed = changed_pages(before, after, sector);
    QByteArray entry("HvLE");
    append<quint32>(entry, 0); // size
    append<quint32>(entry, 0); // flags
    append<quint32>(entry, sequence);
    append<quint32>(entry, number(after, at_bins_size));
    append<quint32>(entry, static_cast<quint32>(changed.size()));
    append<quint64>(entry, 0); // hashes
    append<quint64>(entry, 0);
    for (const int page : changed) {
        append<quint32>(entry, static_cast<quint32>(page));
        append<quint32>(entry, sector);
    }
    for (const int page : changed) {
        entry.append(after.mid(header_size + page, sector));
    }
    fill_up(entry);
    put(entry, at_entry_size, static_cast<quint32>(entry.size()));
    return sealed(QByteArray(sector, '\0') + entry).mid(sector);
}

QByteArray hive_log::dirty_log(const QByteArray& before, const QByteArray& after, quint32 type, quint32 sequence) {
    const quint32 bins_size = number(after, at_bins_size);
    QByteArray map(static_cast<int>(bins_size) / sector / 8, '\0');
    QByteArray pages;
    for (const int page : changed_pages(before, after, sector)) {
        const int bit = page / sector;
        map[bit / 8] = static_cast<char>(map.at(bit / 8) | 1 << bit % 8);
        pages.append(after.mid(header_size + page, sector));
    }
    QByteArray log = sealed(with_number(log_header(before, type, sequence), at_bins_size, bins_size));
    log.append("DIRT").append(map);
    fill_up(log);
    return log + pages;
}
