// SPDX-License-Identifier: MIT
// Names are taken one after the other, as the system walks a path.
#include "host/intake/asked_names.h"

#include <climits>

namespace intake {

QVector<QByteArray> asked_paths(const QByteArray& path) {
    if (path.size() >= PATH_MAX || path.contains('\0')) {
        return {};
    }
    QVector<QByteArray> asked;
    QByteArray reached;
    reached.reserve(path.size());
    for (int begin = 0, end = 0; begin <= path.size(); begin = end + 1) {
        end = path.indexOf('/', begin);
        end = end < 0 ? path.size() : end;
        const QByteArray name = QByteArray::fromRawData(path.constData() + begin, end - begin);
        if (name == ".." && reached.isEmpty()) {
            return {};
        }
        if (name == "..") {
            asked.append(reached);
            reached.truncate(qMax(0, reached.lastIndexOf('/')));
        } else if (!name.isEmpty() && name != ".") {
            reached += reached.isEmpty() ? "" : "/";
            reached += name;
        }
    }
    if (!reached.isEmpty()) {
        asked.append(reached);
    }
    return asked;
}

} // namespace intake
