// SPDX-License-Identifier: MIT
// Files that appear under their names only when all of them are whole. No link is followed: neither to write through,
// nor as the folder's own last name when the folder is not one that the user named.
#pragma once

#include <QByteArray>
#include <QString>

#include <memory>
#include <string>
#include <string_view>
#include <vector>

// A descriptor that is closed on every way out.
class owned_descriptor {
public:
    explicit owned_descriptor(int descriptor = -1) : number(descriptor) {}
    ~owned_descriptor() { close(); }
    owned_descriptor(const owned_descriptor&) = delete;
    owned_descriptor& operator=(const owned_descriptor&) = delete;

    int get() const { return number; }
    void reset(int descriptor);
    bool close(); // false: the system reports that what was written is lost

private:
    int number;
};

// False: not all of it could be written, errno tells why.
bool write_all(int descriptor, std::string_view bytes);

// One file under a temporary name. Writes are buffered; once one has failed, the others do nothing.
class pending_file {
public:
    pending_file(int folder, const QByteArray& name);
    ~pending_file(); // removes the temporary file
    pending_file(const pending_file&) = delete;
    pending_file& operator=(const pending_file&) = delete;

    bool write(std::string_view bytes);
    // Brings everything to the disk and closes the file.
    bool make_whole();
    // For a library that writes the file itself by its name: what it wrote is then taken as this file's content.
    const QByteArray& temporary_name() const { return temporary; }
    bool put_in_place();

    const QByteArray& name() const { return wanted; }
    bool failed() const { return !trouble.isEmpty(); }
    const QString& error() const { return trouble; }
    void fail(const QString& reason);

private:
    bool flush();
    bool fail_with_errno();

    int folder;
    QByteArray wanted;
    QByteArray temporary; // empty when there is none (any more)
    owned_descriptor file;
    std::string buffer;
    QString trouble;
};

class export_folder {
public:
    // Opens the folder, making it and those above it where missing. may_be_link: the user named this very folder.
    export_folder(const QString& path, bool may_be_link);

    bool failed() const { return !error().isEmpty(); }
    QString error() const; // what failed first, with its path; empty while nothing has
    QByteArray native_path() const;

    // A new file in the folder; the folder keeps it. One that cannot be made has failed.
    pending_file& create(const QByteArray& name);
    // A file without a name, open for reading and writing, that is gone when its descriptor is closed; -1: errno tells
    // why there is none.
    int create_scratch() const;
    // Gives all files their names, replacing what had them. False: not all of them.
    bool put_all_in_place();

private:
    QString path;
    owned_descriptor folder;
    QString trouble;
    std::vector<std::unique_ptr<pending_file>> files;
};
