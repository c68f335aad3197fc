// SPDX-License-Identifier: MIT
// Folders are judged by their real locations; a file by its folder, unless it is a link.
#include "source/source_guard.h"

#include "source/real_location.h"

#include <QFile>

#include <climits>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

source_guard::source_guard(const QString& root) {
    if (!root.isEmpty()) {
        native_root = real_location(QFile::encodeName(root));
    }
}

source_guard::~source_guard() {
    for (const known_folder& folder : qAsConst(folders)) {
        if (folder.handle >= 0) {
            ::close(folder.handle);
        }
    }
}

bool source_guard::is_inside(const QByteArray& location) const {
    return !native_root.isEmpty() && !location.isEmpty() && is_at_or_below(location, native_root);
}

const source_guard::known_folder& source_guard::folder_of(const QByteArray& native_folder) {
    const auto known = folders.constFind(native_folder);
    if (known != folders.constEnd()) {
        return *known;
    }
    known_folder folder{is_inside(real_location(native_folder)), -1};
    if (folder.is_inside && open_handles < most_open_handles) {
        folder.handle = ::open(native_folder.constData(), O_PATH | O_DIRECTORY | O_CLOEXEC);
        open_handles += folder.handle >= 0 ? 1 : 0;
    }
    return *folders.insert(native_folder, folder);
}

bool source_guard::exists(const QString& path) {
    return !path.contains(QChar::Null) && exists(QFile::encodeName(path));
}

bool source_guard::exists(const QByteArray& native_path) {
    // The kernel takes no longer paths; remembering their folders would let the evidence choose how much memory is
    // taken.
    if (native_path.size() >= PATH_MAX) {
        return false;
    }
    if (native_root.isEmpty() || !native_path.startsWith('/') || native_path.contains('\0')) {
        return false;
    }
    const int leaf = native_path.lastIndexOf('/') + 1;
    const QByteArray name = native_path.mid(leaf);
    if (name.isEmpty() || name == "." || name == "..") {
        return is_inside(real_location(native_path)); // a folder named with its "/": the leaf is not a plain name
    }
    const known_folder& folder = folder_of(native_path.left(leaf));
    if (!folder.is_inside) {
        return false;
    }
    struct stat status = {};
    const int found = folder.handle >= 0 ? ::fstatat(folder.handle, name.constData(), &status, AT_SYMLINK_NOFOLLOW)
                                         : ::lstat(native_path.constData(), &status);
    return found == 0 && (!S_ISLNK(status.st_mode) || is_inside(real_location(native_path)));
}
