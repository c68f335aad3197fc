// SPDX-License-Identifier: MIT
// Every folder on a path is opened by its handle and its own name.
#include "host/intake/staging_folder.h"

#include "host/intake/names.h"
#include "host/intake/times.h"

#include <QList>

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

quiet_file staging_folder::parent_of(const QByteArray& path, bool makes) const {
    quiet_file folder(top.descriptor(), ".", as_folder);
    const QList<QByteArray> names = path.split('/');
    for (int i = 0; i < names.size() && folder.is_open(); ++i) {
        const bool is_last = i == names.size() - 1;
        errno = is_plain_name(names[i]) ? 0 : EINVAL;
        if (errno == 0 && !is_last && makes) {
            errno = make_one(folder.descriptor(), names[i]);
        }
        if (errno != 0) {
            return {};
        }
        if (!is_last) {
            folder = quiet_file(folder.descriptor(), names[i], as_folder);
        }
    }
    return folder;
}

int staging_folder::make_folder(const QByteArray& path) const {
    const quiet_file parent = parent_of(path, true);
    if (!parent.is_open()) {
        return errno;
    }
    const int failed = make_one(parent.descriptor(), last_name(path));
    const quiet_file made(parent.descriptor(), last_name(path), as_folder); // it may be no folder that was there
    return failed != 0 ? failed : made.is_open() ? 0 : errno;
}

int staging_folder::create_file(const QByteArray& path, quiet_file& created) const {
    const quiet_file parent = parent_of(path, true);
    if (!parent.is_open()) {
        return errno;
    }
    constexpr mode_t only_owner = 0600;
    created = quiet_file(::openat(parent.descriptor(), last_name(path).constData(),
                                  O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, only_owner));
    return created.is_open() ? 0 : errno;
}

int staging_folder::open_file(const QByteArray& path, quiet_file& opened) const {
    const quiet_file parent = parent_of(path, false);
    if (!parent.is_open()) {
        return errno;
    }
    opened = quiet_file(parent.descriptor(), last_name(path), O_RDONLY | O_NONBLOCK | O_NOFOLLOW | O_CLOEXEC);
    return opened.is_open() ? 0 : errno;
}

int staging_folder::remove_file(const QByteArray& path) const {
    const quiet_file parent = parent_of(path, false);
    if (!parent.is_open()) {
        return errno;
    }
    return ::unlinkat(parent.descriptor(), last_name(path).constData(), 0) == 0 ? 0 : errno;
}

int staging_folder::rename_file(const QByteArray& from, const QByteArray& to) const {
    const quiet_file parent = parent_of(from, false);
    if (!parent.is_open()) {
        return errno;
    }
    const int folder = parent.descriptor();
    return ::renameat(folder, last_name(from).constData(), folder, last_name(to).constData()) == 0 ? 0 : errno;
}

int staging_folder::set_times(const QByteArray& path, const ntfs_times& times) const {
    const quiet_file parent = parent_of(path, false);
    const timespec both[] = {time_to_set(times.accessed), time_to_set(times.modified)};
    const bool done = parent.is_open() &&
                      ::utimensat(parent.descriptor(), last_name(path).constData(), both, AT_SYMLINK_NOFOLLOW) == 0;
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
