// SPDX-License-Identifier: MIT
// O_PATH: a handle on the name alone, which neither reads the file nor blocks on it.
#include "source/readable_alias.h"

#include <QFile>

#include <fcntl.h>
#include <unistd.h>

readable_alias::readable_alias(const walk_entry& entry)
    : is_faithful(QFile::encodeName(entry.path) == entry.native_path), name(QStringLiteral("")) {
    if (is_faithful) {
        name = entry.path;
        return;
    }
    handle = ::open(entry.native_path.constData(), O_PATH | O_CLOEXEC);
    if (handle >= 0) {
        name = QStringLiteral("/proc/self/fd/") + QString::number(handle);
    }
}

readable_alias::~readable_alias() {
    if (handle >= 0) {
        ::close(handle);
    }
}
