// SPDX-License-Identifier: MIT
// Evidence as it comes, seen as folders and files: a plain folder, a disk image or an archive behind one interface.
//
// A path is names in bytes, as list() gave them, with "/" between; the empty path is the top. Nothing here follows a
// link, and no name that a view gives is empty, ".", ".." or holds a "/".
#pragma once

#include <QByteArray>
#include <QString>
#include <QVector>

#include <optional>

namespace intake {

enum class entry_kind {
    file,
    folder,
    link, // symbolic and hard links of archives, symbolic links, junctions and mount points of Windows
    other // pipes, devices and what a file system keeps for itself
};

// The times that NTFS keeps for an entry, in 100 ns since 1601-01-01 UTC (see common/filetime.h). No value: the source
// does not tell it.
struct ntfs_times {
    std::optional<qint64> created;
    std::optional<qint64> modified;
    std::optional<qint64> accessed;
    std::optional<qint64> changed; // of the entry itself: its name, its attributes
};

struct view_entry {
    QByteArray name;
    entry_kind kind = entry_kind::other;
    qint64 size = -1; // bytes of a file; -1: not told
    ntfs_times times;
    QString unreadable; // why the content of a file cannot be had, such as "it is encrypted"; else empty
};

struct view_listing {
    QVector<view_entry> entries; // in byte order of the names
    QString problem;             // why the folder could not be listed, or not all of it; else empty
};

// Takes the bytes of files that are read, one file after the other. index: position in the list that was asked for.
class file_sink {
public:
    virtual ~file_sink() = default;
    virtual void begin(int index) = 0;
    // The next bytes. False: no more of this file is wanted.
    virtual bool take(int index, const char* bytes, qint64 count) = 0;
    // The file's end. problem: why not all of it could be read; else empty. False: no more files are wanted.
    virtual bool end(int index, const QString& problem) = 0;
};

class source_view {
public:
    source_view() = default;
    virtual ~source_view() = default;
    source_view(const source_view&) = delete;
    source_view& operator=(const source_view&) = delete;

    // What stands in a folder; a problem when the path is none.
    virtual view_listing list(const QByteArray& path) = 0;
    // Reads files in pieces, in whatever order is cheapest (an archive is passed over once). Every path gets one
    // begin() and one end(), unless an end() returned false.
    virtual void read_files(const QVector<QByteArray>& paths, file_sink& sink) = 0;
};

constexpr int piece_size = 1 << 20; // bytes that a view holds of a file at a time

// folder and name as one path.
inline QByteArray joined(const QByteArray& folder, const QByteArray& name) {
    return folder.isEmpty() ? name : name.isEmpty() ? folder : folder + '/' + name;
}

} // namespace intake
