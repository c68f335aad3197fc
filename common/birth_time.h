// SPDX-License-Identifier: MIT
// When a file came into being, where its file system does not tell it in the usual way: ntfs-3g keeps it in an extended
// attribute.
#pragma once

#include <QByteArray>

// Name of ntfs-3g's attribute: the file's birth time as FILETIME, eight bytes, big-endian.
inline constexpr const char* ntfs_birth_time_attribute = "system.ntfs_crtime_be";

// The attribute's value in Unix seconds, truncating toward zero. 0 for anything but eight bytes, and for a count that
// is 0 or beyond 63 bits.
qint64 unix_seconds_of_ntfs_time(const QByteArray& value);

// Reads the attribute of the file, links followed; the file is not opened. native_path: as the file system spells it.
// 0 when there is no such file or attribute.
qint64 birth_time_in_attribute(const QByteArray& native_path, const char* attribute = ntfs_birth_time_attribute);
