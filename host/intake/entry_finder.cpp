// SPDX-License-Identifier: MIT
// Folders are listed once each, until what is remembered grows too large. The folders above the asked one stay then:
// a folder with very many others in it must not be listed anew for each of them.
#include "host/intake/entry_finder.h"

#include "host/intake/names.h"

#include <iterator>

namespace intake {

QByteArray entry_finder::windows_name(const QByteArray& name) const {
    const QByteArray plain = decodes ? without_percents(name) : name;
    return is_plain_name(plain) ? plain : QByteArray();
}

std::shared_ptr<const entry_finder::folder_index> entry_finder::listed(const QByteArray& path) {
    const auto remembered = known.constFind(path);
    if (remembered != known.constEnd()) {
        return *remembered;
    }
    constexpr int most_remembered = 100000; // entries
    auto index = std::make_shared<folder_index>();
    index->listing = source.list(path);
    for (int i = 0; i < index->listing.entries.size(); ++i) {
        index->by_folded_name[folded(windows_name(index->listing.entries[i].name))].append(i);
    }
    if (known_entries > most_remembered) {
        forget_all_beside(path);
    }
    known_entries += index->listing.entries.size() + 1;
    known.insert(path, index);
    return index;
}

void entry_finder::forget_all_beside(const QByteArray& path) {
    known_entries = 0;
    for (auto one = known.begin(); one != known.end();) {
        const bool is_above = one.key().isEmpty() || path.startsWith(one.key() + '/');
        known_entries += is_above ? (*one)->listing.entries.size() + 1 : 0;
        one = is_above ? std::next(one) : known.erase(one);
    }
}

// True when the name is there; a step further from a folder, which may be the base.
bool entry_finder::step(found_entry& found, const QByteArray& name) {
    if (!is_plain_name(name)) {
        return false;
    }
    const auto folder = listed(found.path);
    const QVector<view_entry>& entries = folder->listing.entries;
    const QVector<int> matches = folder->by_folded_name.value(folded(name));
    if (matches.isEmpty()) {
        found.problem = folder->listing.problem;
        return false;
    }
    int taken = matches.first();
    for (const int match : matches) {
        taken = windows_name(entries[match].name) == name ? match : taken;
    }
    for (const int match : matches) {
        if (match != taken) {
            found.twins.append(joined(found.path, entries[match].name));
        }
    }
    found.path = joined(found.path, entries[taken].name);
    found.entry = entries[taken];
    return true;
}

// True when a name may follow.
bool entry_finder::is_folder(found_entry& found) {
    if (found.entry.kind == entry_kind::link || found.entry.kind == entry_kind::other) {
        found.problem = found.entry.kind == entry_kind::link ? QStringLiteral("it is a link; not followed")
                                                             : QStringLiteral("it is not a folder");
    }
    return found.entry.kind == entry_kind::folder;
}

found_entry entry_finder::find(const QByteArray& base, const QByteArray& wanted) {
    const int slash = wanted.lastIndexOf('/');
    found_entry found;
    found.path = base;
    if (slash >= 0) {
        if (last_base != base || last_folder != wanted.left(slash)) {
            last_base = base;
            last_folder = wanted.left(slash);
            last_found = found;
            bool goes_on = true;
            const QList<QByteArray> names = last_folder.split('/');
            for (const QByteArray& name : names) {
                goes_on = goes_on && step(last_found, name) && is_folder(last_found);
            }
            last_found.there = goes_on;
        }
        found = last_found;
        if (!found.there) {
            return found;
        }
    }
    found.there = step(found, wanted.mid(slash + 1));
    return found;
}

} // namespace intake
