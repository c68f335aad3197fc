// SPDX-License-Identifier: MIT
// Level by level, and no deeper than any known collection goes.
#include "host/intake/source_root.h"

#include "host/intake/names.h"

namespace intake {
namespace {

bool is_drive(QByteArray name) { // folded
    if (name.startsWith("\\\\.\\")) {
        name.remove(0, 4);
    }
    if (name.endsWith(':')) {
        name.chop(1);
    }
    return name.size() == 1 && name[0] >= 'a' && name[0] <= 'z';
}

bool is_numbered_partition(const QByteArray& name) { // folded
    bool is_number = false;
    name.mid(1).toUInt(&is_number);
    return is_number && name.startsWith('p');
}

bool is_wrapper(const QByteArray& name) {
    const QByteArray plain = folded(without_percents(name));
    return is_drive(plain) || is_numbered_partition(plain) || plain == "fs" || plain == "uploads" || plain == "auto" ||
           plain == "ntfs";
}

bool holds_users(const QVector<QByteArray>& names) {
    static const QByteArray users = folded("Users");
    for (const QByteArray& name : names) {
        if (folded(name) == users) {
            return true;
        }
    }
    return false;
}

// The folders in a folder that may lead on to a Windows tree.
void add_wrapped(const source_root& folder, const QVector<QByteArray>& names, QVector<source_root>& next) {
    constexpr int most_looked_at = 256; // of a level
    for (const QByteArray& name : names) {
        const bool wraps = is_wrapper(name);
        if ((wraps || names.size() == 1) && next.size() < most_looked_at) {
            next.append({joined(folder.path, name), folder.percent_encoded || (wraps && name.contains('%'))});
        }
    }
}

} // namespace

QVector<source_root> find_source_roots(const folder_lister& list) {
    constexpr int most_levels = 5;
    QVector<source_root> roots;
    QVector<source_root> level{source_root()};
    for (int depth = 0; depth <= most_levels && !level.isEmpty(); ++depth) {
        QVector<source_root> next;
        for (const source_root& folder : qAsConst(level)) {
            const QVector<QByteArray> names = list(folder.path);
            if (holds_users(names)) {
                roots.append(folder);
                continue;
            }
            add_wrapped(folder, names, next);
        }
        level = next;
    }
    return roots;
}

found_roots find_source_roots(source_view& view) {
    found_roots found;
    const folder_lister list = [&](const QByteArray& path) {
        const view_listing listing = view.list(path);
        found.problem = listing.problem.isEmpty() ? found.problem : listing.problem;
        QVector<QByteArray> names;
        for (const view_entry& entry : listing.entries) {
            if (entry.kind == entry_kind::folder) {
                names.append(entry.name);
            }
        }
        return names;
    };
    found.roots = find_source_roots(list);
    return found;
}

} // namespace intake
