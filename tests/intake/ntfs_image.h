// SPDX-License-Identifier: MIT
// NTFS volumes in files, made without mounting.
#pragma once

#include <QByteArray>
#include <QVector>

// What is special about one file of the volume, by its path in it.
struct ntfs_special {
    QByteArray path;
    quint32 reparse_tag = 0; // 0: none
    bool is_encrypted = false;
};

// The four times that every file and folder of the volume gets: created, modified, accessed, changed; 100 ns since
// 1601.
constexpr qint64 ntfs_image_times[] = {132000000012345671, 132000000112345672, 132000000212345673, 132000000312345674};

// A new volume of so many MiB at the path, holding all that the folder holds. Ends the test program when it cannot.
void write_ntfs_image(const QByteArray& image, int mebibytes, const QByteArray& folder,
                      const QVector<ntfs_special>& special = {});
