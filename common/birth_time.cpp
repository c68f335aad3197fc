// SPDX-License-Identifier: MIT
// The big-endian attribute is asked for: the other one's byte order is that of the machine that runs ntfs-3g.
#include "common/birth_time.h"

#include "common/filetime.h"

#include <QtEndian>

#include <sys/xattr.h>

qint64 unix_seconds_of_ntfs_time(const QByteArray& value) {
    if (value.size() != int(sizeof(qint64))) {
        return 0;
    }
    const auto ticks = qFromBigEndian<qint64>(value.constData());
    return ticks > 0 ? (ticks - filetime::ticks_before_1970) / filetime::ticks_per_second : 0;
}

qint64 birth_time_in_attribute(const QByteArray& native_path, const char* attribute) {
    QByteArray value(int(sizeof(qint64)), '\0');
    const ssize_t size =
        ::getxattr(native_path.constData(), attribute, value.data(), static_cast<size_t>(value.size()));
    return size == value.size() ? unix_seconds_of_ntfs_time(value) : 0;
}
