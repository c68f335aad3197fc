// SPDX-License-Identifier: MIT
// Every folder on a path is opened by its handle and its own name.
#include "host/intake/staging_folder.h"

#include "host/intake/names.h"
#include "host/intake/times.h"

#include <QList>

#include <utility>

namespace intake {
namespace {

constexpr int as_folder = O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC;

QByteArray last_name(const QByteArray& path) {
    return path.mid(path.lastIndexOf('/') + 1);
}

int make_one(int folder, const QByteArray& name) {
    constexpr mode_t only_owner = 0700;
    return ::mkdirat(folder, name.constData(), only_owner) == 0 || errno == EEXIST ? 0 : errno;
}

timespec time_to_set(const std::optional<qint64>& ticks) {
    return ticks ? timespec_of(*ticks) : timespec{0, 0};
}

} // namespace

int staging_folder::parent_of(const QByteArray& path, bool makes) const {
    QList<QByteArray> names = path.split('/');
    const QByteArray last = names.takeLast();
    errno = is_plain_name(last) ? 0 : EINVAL;
    if (errno != 0) {
        return -1;
    }
    const QByteArray wanted = path.chopped(last.size());
    if (last_opened.is_open() && last_folder == wanted) {
        return last_opened.descriptor();
    }
    quiet_file folder(top.descriptor(), ".", as_folder);
    for (const QByteArray& name : qAsConst(names)) {
        errno = is_plain_name(name) ? 0 : EINVAL;
        if (errno == 0 && makes) {
            errno = make_one(folder.descriptor(), name);
        }
        if (errno != 0) {
            return -1;
        }
        folder = quiet_file(folder.descriptor(), name, as_folder);
        if (!folder.is_open()) {
            return -1;
        }
    }
    last_folder = wanted;
    last_opened = std::move(folder);
    return last_opened.descriptor();
}

int staging_folder::make_folder(const QByteArray& path) const {
    const int parent = parent_of(path, true);
    if (parent < 0) {
        return errno;
    }
    const int failed = make_one(parent, last_name(path));
    const quiet_file made(parent, last_name(path), as_folder); // it may be no folder that was there
    return failed != 0 ? failed : made.is_open() ? 0 : errno;
}

int staging_folder::create_file(const QByteArray& path, quiet_file& created) const {
    const int parent = parent_of(path, true);
    if (parent < 0) {
        return errno;
    }
    constexpr mode_t only_owner = 0600;
    created = quiet_file(::openat(parent, last_name(path).constData(),
                                  O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, only_owner));
    return created.is_open() ? 0 : errno;
}

int staging_folder::open_file(const QByteArray& path, quiet_file& opened) const {
    const int parent = parent_of(path, false);
    if (parent < 0) {
        return errno;
    }
    opened = quiet_file(parent, last_name(path), O_RDONLY | O_NONBLOCK | O_NOFOLLOW | O_CLOEXEC);
    return opened.is_open() ? 0 : errno;
}

int staging_folder::remove_file(const QByteArray& path) const {
    const int parent = parent_of(path, false);
    if (parent < 0) {
        return errno;
    }
    return ::unlinkat(parent, last_name(path).constData(), 0) == 0 ? 0 : errno;
}

int staging_folder::rename_file(const QByteArray& from, const QByteArray& to) const {
    const int parent = parent_of(from, false);
    if (parent < 0) {
        return errno;
    }
    return ::renameat(parent, last_name(from).constData(), parent, last_name(to).constData()) == 0 ? 0 : errno;
}

int staging_folder::set_times(const QByteArray& path, const ntfs_times& times) const {
    const int parent = parent_of(path, false);
    const timespec both[] = {time_to_set(times.accessed), time_to_set(times.modified)};
    const bool done = parent >= 0 && ::utimensat(parent, last_name(path).constData(), both, AT_SYMLINK_NOFOLLOW) == 0;
    return done ? 0 : errno;
}

int write_all(const quiet_file& file, const char* bytes, qint64 count) {
    for (qint64 done = 0; done < count;) {
        const ssize_t written = ::write(file.descriptor(), bytes + done, static_cast<size_t>(count - done));
        if (written < 0 && errno != EINTR) {
            return errno;
        }
        done += written > 0 ? written : 0;
    }
    return 0;
}

} // namespace intake
