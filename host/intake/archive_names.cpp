// SPDX-License-Identifier: MIT
// "./" and doubled separators are how archivers write; "..", an absolute name and an endless one are refused.
#include "host/intake/archive_names.h"

#include "host/intake/names.h"
#include "host/intake/view.h"

#include <QList>

#include <climits>

namespace intake {

archive_path path_in_archive(const QByteArray& name) {
    if (name.startsWith('/')) {
        return {{}, "its name begins at the root of a file system"};
    }
    if (name.size() >= PATH_MAX) {
        return {{}, "its name is too long"};
    }
    QByteArray path;
    for (const QByteArray& part : name.split('/')) {
        if (part.isEmpty() || part == ".") {
            continue;
        }
        if (!is_plain_name(part)) {
            return {{}, part == ".." ? "its name leads upwards (..)" : "its name holds a zero byte"};
        }
        path += path.isEmpty() ? QByteArray() : QByteArray("/");
        path += part;
    }
    return {path, nullptr};
}

} // namespace intake
