// SPDX-License-Identifier: MIT
// Writes the transaction logs that turn one state of a registry hive into another, in both formats. The hash of the
// entries is written a second time here, apart from the code that reads it.
#pragma once

#include <QByteArray>

namespace hive_log {

constexpr quint32 first_dirty = 1; // types of the files
constexpr quint32 second_dirty = 2;
constexpr quint32 with_entries = 6;

// A hive or log with these sequence numbers in its base block, and the block's checksum.
QByteArray with_sequences(QByteArray file, quint32 primary, quint32 secondary);
// With a changed number of 32 bits. The hashes of entries and the checksum are left as they were.
QByteArray with_number(QByteArray file, int offset, quint32 number);
// With the right checksum of the base block and, in a log with entries, the right hashes of all that stand in a row.
QByteArray sealed(QByteArray file);

// The old format: base block, map, changed pages of 512 bytes. Both states have the base block of the first one.
QByteArray dirty_log(const QByteArray& before, const QByteArray& after, quint32 type, quint32 sequence);

// The new format: the base block, and behind it any number of entries.
QByteArray log_header(const QByteArray& hive, quint32 type, quint32 sequence);
QByteArray log_entry(const QByteArray& before, const QByteArray& after, quint32 sequence);

} // namespace hive_log
