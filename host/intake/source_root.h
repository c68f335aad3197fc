// SPDX-License-Identifier: MIT
// Where the Windows tree stands in what was given: a drive's folder in a collection, a partition's folder, the only
// folder of an archive. A rule over names alone.
#pragma once

#include "host/intake/view.h"

#include <functional>

namespace intake {

// The names of the folders in a folder; the empty path is the top.
using folder_lister = std::function<QVector<QByteArray>(const QByteArray& path)>;

struct source_root {
    QByteArray path;              // empty: the top itself
    bool percent_encoded = false; // names below it are, as the drive's own is ("C%3A")
};

// Every folder that holds "Users" (in any upper and lower case) and is the top or reached from it through folders that
// collections are known to wrap a drive in: C, C:, C%3A, %5C%5C.%5CC%3A, fs, p1, uploads, auto, ntfs, or an only
// folder. None: there is no Windows tree. Several: each is one, nearest to the top first, and a person has to say
// which.
QVector<source_root> find_source_roots(const folder_lister& list);

// The same for a view.
struct found_roots {
    QVector<source_root> roots;
    QString problem; // why a folder on the way could not be listed; else empty
};
found_roots find_source_roots(source_view& view);

} // namespace intake
