// SPDX-License-Identifier: MIT
// Finds entries of a view by wanted paths, as Windows would: an entry of that very name, else one whose name differs in
// upper and lower case only.
#pragma once

#include "host/intake/view.h"

#include <QHash>

#include <memory>

namespace intake {

struct found_entry {
    bool there = false;
    QByteArray path; // in the view; when it is not there, how far the way led
    view_entry entry;
    QVector<QByteArray> twins; // paths passed over because they differ from the taken ones in case only
    QString problem;           // why it could not be found out whether it is there; else empty
};

class entry_finder {
public:
    // percent_encoded: names of the view are decoded before they are compared. The view outlives this object.
    entry_finder(source_view& view, bool percent_encoded) : source(view), decodes(percent_encoded) {}

    // wanted: below base, a path of the view. Links on the way are not followed: a problem.
    found_entry find(const QByteArray& base, const QByteArray& wanted);
    // As the view gives it; listings are remembered.
    view_listing list(const QByteArray& path) { return listed(path)->listing; }
    // The name that an entry has on Windows; empty when that is no plain name.
    QByteArray windows_name(const QByteArray& name) const;

private:
    struct folder_index {
        view_listing listing;
        QHash<QByteArray, QVector<int>> by_folded_name;
    };
    std::shared_ptr<const folder_index> listed(const QByteArray& path);
    void forget_all_beside(const QByteArray& path);

    source_view& source;
    bool decodes;
    QHash<QByteArray, std::shared_ptr<const folder_index>> known;
    int known_entries = 0;
};

} // namespace intake
