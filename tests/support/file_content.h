// SPDX-License-Identifier: MIT
// Files and folders as they stand on the disk.
#pragma once

#include <QDateTime>
#include <QDirIterator>
#include <QFile>
#include <QStringList>

inline QByteArray whole_file(const QString& path) {
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

// Everything below a folder: paths, permissions, times, link targets and contents, so that two of them compare. Pipes
// are not opened, and no link is followed.
inline QStringList everything_below(const QString& top) {
    QStringList found;
    QDirIterator entries(top, QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot,
                         QDirIterator::Subdirectories);
    while (entries.hasNext()) {
        const QString path = entries.next();
        const QFileInfo entry = entries.fileInfo();
        const QString link = entry.symLinkTarget(); // empty when it is none
        const QByteArray content = link.isEmpty() && entry.isFile() ? whole_file(path) : QByteArray();
        found << QStringLiteral("%1 %2 %3 %4 %5 ")
                         .arg(path, link, entry.lastModified().toString(Qt::ISODateWithMs))
                         .arg(entry.isDir())
                         .arg(int(entry.permissions())) +
                     QString::fromLatin1(content);
    }
    found.sort();
    return found;
}
