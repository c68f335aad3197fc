// SPDX-License-Identifier: MIT
// The order is what counts: contents, then names, then the one rename, each brought to the disk before the next.
#include "host/batch/publish.h"

#include "host/exports/whole_files.h"
#include "source/native_names.h"

#include <QFile>
#include <QFileInfo>
#include <QJsonDocument>

#include <cerrno>
#include <cstdio>
#include <fcntl.h>
#include <filesystem>
#include <sys/stat.h>
#include <unistd.h>
#include <vector>

namespace batch {
namespace {

namespace fs = std::filesystem;

fs::path native(const QString& path) {
    return fs::path(QFile::encodeName(path).constData());
}

QString failure(const fs::path& path, int error) {
    return QStringLiteral("%1: %2").arg(shown_path(path.c_str()), error_words(error));
}

bool write_all(int to, const char* bytes, ssize_t count) {
    for (ssize_t done = 0; done < count;) {
        const ssize_t written = ::write(to, bytes + done, static_cast<size_t>(count - done));
        if (written < 0 && errno != EINTR) {
            return false;
        }
        done += written > 0 ? written : 0;
    }
    return true;
}

bool copy_bytes(int from, int to) {
    constexpr size_t chunk = 1 << 20;
    std::vector<char> buffer(chunk);
    for (;;) {
        const ssize_t got = ::read(from, buffer.data(), chunk);
        if (got == 0) {
            return true;
        }
        if (got < 0 ? errno != EINTR : !write_all(to, buffer.data(), got)) {
            return false;
        }
    }
}

bool copy_file(const fs::path& from, const fs::path& to, QString& error) {
    constexpr mode_t readable = 0666; // less the umask
    const owned_descriptor source(::open(from.c_str(), O_RDONLY | O_CLOEXEC | O_NOFOLLOW));
    if (source.get() < 0) {
        error = failure(from, errno);
        return false;
    }
    owned_descriptor target(::open(to.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC | O_NOFOLLOW, readable));
    const bool done =
        target.get() >= 0 && copy_bytes(source.get(), target.get()) && ::fsync(target.get()) == 0 && target.close();
    error = done ? error : failure(to, errno);
    return done;
}

bool sync_folder(const fs::path& folder, QString& error) {
    const owned_descriptor opened(::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    // Some shared folders (SMB) cannot do it for a folder; their files are on the disk nevertheless.
    const bool done = opened.get() >= 0 && (::fsync(opened.get()) == 0 || errno == EINVAL || errno == ENOTSUP);
    error = done ? error : failure(folder, errno);
    return done;
}

bool copy_folder(const fs::path& from, const fs::path& to, QString& error) {
    if (::mkdir(to.c_str(), 0777) != 0) {
        error = failure(to, errno);
        return false;
    }
    std::error_code trouble;
    for (fs::directory_iterator entry(from, trouble), end; !trouble && entry != end; entry.increment(trouble)) {
        const fs::path name = entry->path().filename();
        const fs::file_status status = entry->symlink_status(trouble);
        const bool hidden = name.native()[0] == '.';
        if (!hidden && fs::is_directory(status) && !copy_folder(entry->path(), to / name, error)) {
            return false;
        }
        if (!hidden && fs::is_regular_file(status) && !copy_file(entry->path(), to / name, error)) {
            return false;
        }
    }
    if (trouble) {
        error = failure(from, trouble.value());
        return false;
    }
    return sync_folder(to, error);
}

// What stands there already becomes what a copy of it would be: without hidden files, and on the disk.
bool settle_folder(const fs::path& folder, QString& error) {
    std::error_code trouble;
    for (fs::directory_iterator entry(folder, trouble), end; !trouble && entry != end; entry.increment(trouble)) {
        const fs::file_status status = entry->symlink_status(trouble);
        if (entry->path().filename().native()[0] == '.') {
            fs::remove_all(entry->path(), trouble);
        } else if (fs::is_directory(status) && !settle_folder(entry->path(), error)) {
            return false;
        } else if (fs::is_regular_file(status)) {
            const owned_descriptor file(::open(entry->path().c_str(), O_RDONLY | O_CLOEXEC | O_NOFOLLOW));
            if (file.get() < 0 || ::fsync(file.get()) != 0) {
                error = failure(entry->path(), errno);
                return false;
            }
        }
    }
    if (trouble) {
        error = failure(folder, trouble.value());
        return false;
    }
    return sync_folder(folder, error);
}

bool share_a_file_system(const fs::path& one, const QString& other) {
    struct stat first = {};
    struct stat second = {};
    return ::stat(one.c_str(), &first) == 0 && ::stat(native(other).c_str(), &second) == 0 &&
           first.st_dev == second.st_dev;
}

// Moves the folder where that is possible.
bool bring(const fs::path& finished, const QString& parent, const fs::path& partial, QString& error) {
    if (!share_a_file_system(finished, parent)) {
        return copy_folder(finished, partial, error);
    }
    if (!settle_folder(finished, error)) {
        return false;
    }
    return std::rename(finished.c_str(), partial.c_str()) == 0 || copy_folder(finished, partial, error);
}

QString aside(const QString& parent, const QString& name) {
    return parent + QStringLiteral("/.") + name + QStringLiteral(".old");
}

bool rename_path(const QString& from, const QString& to, QString& error) {
    const bool done = std::rename(native(from).c_str(), native(to).c_str()) == 0;
    error = done ? error : failure(native(to), errno);
    return done;
}

} // namespace

void remove_folder(const QString& folder) {
    std::error_code ignored; // what is left is met by the next one who needs the name
    fs::remove_all(native(folder), ignored);
}

void take_back(const QString& parent, const QString& name) {
    QString ignored;
    const QString there = parent + QLatin1Char('/') + name;
    if (QFileInfo::exists(aside(parent, name)) && !QFileInfo::exists(there)) {
        rename_path(aside(parent, name), there, ignored);
    }
}

bool publish_folder(const QString& finished, const QString& parent, const QString& name, QString& error) {
    const QString there = parent + QLatin1Char('/') + name;
    const QString partial = parent + QStringLiteral("/.") + name + QStringLiteral(".partial");
    remove_folder(partial);
    if (!bring(native(finished), parent, native(partial), error)) {
        remove_folder(partial);
        return false;
    }
    if (QFileInfo::exists(there)) {
        remove_folder(aside(parent, name));
        if (!rename_path(there, aside(parent, name), error)) {
            remove_folder(partial);
            return false;
        }
    }
    if (!rename_path(partial, there, error)) {
        take_back(parent, name);
        return false;
    }
    remove_folder(aside(parent, name));
    return sync_folder(native(parent), error);
}

QJsonObject object_in(const QString& file) {
    QFile opened(file);
    return opened.open(QIODevice::ReadOnly) ? QJsonDocument::fromJson(opened.readAll()).object() : QJsonObject();
}

bool write_whole(const QString& file, const QByteArray& content, QString& error) {
    export_folder folder(QFileInfo(file).path(), true);
    if (!folder.failed()) {
        pending_file& pending = folder.create(QFile::encodeName(QFileInfo(file).fileName()));
        if (pending.write({content.constData(), static_cast<size_t>(content.size())}) && pending.make_whole()) {
            folder.put_all_in_place();
        }
    }
    error = folder.error();
    return error.isEmpty();
}

} // namespace batch
