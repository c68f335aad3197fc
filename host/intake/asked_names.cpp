// SPDX-License-Identifier: MIT
// Names are taken one after the other, as the system walks a path.
#include "host/intake/asked_names.h"

#include "host/intake/view.h"

#include <QList>

#include <climits>

namespace intake {

QVector<QByteArray> asked_paths(const QByteArray& path) {
    if (path.size() >= PATH_MAX || path.contains('\0')) {
        return {};
    }
    QVector<QByteArray> asked;
    QByteArray reached;
    for (const QByteArray& name : path.split('/')) {
        if (name == ".." && reached.isEmpty()) {
            return {};
        }
        if (name == "..") {
            asked.append(reached);
            reached.truncate(qMax(0, reached.lastIndexOf('/')));
        } else if (!name.isEmpty() && name != ".") {
            reached = joined(reached, name);
        }
    }
    if (!reached.isEmpty()) {
        asked.append(reached);
    }
    return asked;
}

} // namespace intake
