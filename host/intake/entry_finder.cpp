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

found_entry entry_finder::find(const QByteArray& base, const QByteArray& wanted) {
    found_entry found;
    found.path = base;
    const QList<QByteArray> names = wanted.split('/');
    for (int step = 0; step < names.size(); ++step) {
        if (!is_plain_name(names[step])) {
            return found;
        }
        const auto folder = listed(found.path);
        const QVector<view_entry>& entries = folder->listing.entries;
        const QVector<int> matches = folder->by_folded_name.value(folded(names[step]));
        if (matches.isEmpty()) {
            found.problem = folder->listing.problem;
            return found;
        }
        int taken = matches.first();
        for (const int match : matches) {
            taken = windows_name(entries[match].name) == names[step] ? match : taken;
        }
        for (const int match : matches) {
            if (match != taken) {
                found.twins.append(joined(found.path, entries[match].name));
            }
        }
        found.path = joined(found.path, entries[taken].name);
        found.entry = entries[taken];
        if (step + 1 < names.size() && found.entry.kind != entry_kind::folder) {
            found.problem = found.entry.kind == entry_kind::file ? QString() : QStringLiteral("it is not a folder");
            found.problem =
                found.entry.kind == entry_kind::link ? QStringLiteral("it is a link; not followed") : found.problem;
            return found;
        }
    }
    found.there = true;
    return found;
}

} // namespace intake
