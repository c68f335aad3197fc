// SPDX-License-Identifier: MIT
// Real locations are told by realpath(3): every link and ".." resolved by the kernel's own rules.
#include "source/source_guard.h"

#include <QFile>

#include <cstdlib>
#include <memory>
#include <sys/stat.h>

namespace {

QByteArray real_path(const QByteArray& native_path) {
    struct free_text {
        void operator()(char* text) const { std::free(text); }
    };
    const std::unique_ptr<char, free_text> resolved(::realpath(native_path.constData(), nullptr));
    return QByteArray(resolved.get());
}

} // namespace

source_guard::source_guard(const QString& root) {
    if (!root.isEmpty()) {
        native_root = real_path(QFile::encodeName(root));
    }
}

bool source_guard::is_inside(const QByteArray& real_location) const {
    if (native_root.isEmpty() || real_location.isEmpty()) {
        return false;
    }
    return native_root == "/" || real_location == native_root || real_location.startsWith(native_root + '/');
}

bool source_guard::is_folder_inside(const QByteArray& native_folder) {
    const auto known = folders.constFind(native_folder);
    if (known != folders.constEnd()) {
        return *known;
    }
    const bool inside = is_inside(real_path(native_folder));
    folders.insert(native_folder, inside);
    return inside;
}

bool source_guard::exists(const QString& path) {
    return !path.contains(QChar::Null) && exists(QFile::encodeName(path));
}

bool source_guard::exists(const QByteArray& native_path) {
    if (native_root.isEmpty() || !native_path.startsWith('/') || native_path.contains('\0')) {
        return false;
    }
    const int leaf = native_path.lastIndexOf('/') + 1;
    const QByteArray name = native_path.mid(leaf);
    if (name.isEmpty() || name == "." || name == "..") {
        return is_inside(real_path(native_path)); // a folder named with its "/": the leaf is not a plain name
    }
    if (!is_folder_inside(native_path.left(leaf))) {
        return false;
    }
    struct stat status = {};
    if (::lstat(native_path.constData(), &status) != 0) {
        return false;
    }
    return !S_ISLNK(status.st_mode) || is_inside(real_path(native_path));
}
