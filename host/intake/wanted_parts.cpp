// SPDX-License-Identifier: MIT
// The log and checkpoint files stand with the database and the hive that they belong to.
#include "host/intake/wanted_parts.h"

#include "host/intake/names.h"
#include "source/places.h"

#include <QList>

#include <algorithm>
#include <iterator>

namespace intake {
namespace {

// A place's path without the "/" at its begin and end.
QByteArray bare(const char* below) {
    QByteArray path(below);
    path = path.mid(path.startsWith('/') ? 1 : 0);
    return path.endsWith('/') ? path.chopped(1) : path;
}

// The file's own name, and the logs that Windows keeps beside it.
std::vector<QByteArray> names_of(const evidence_place& place, const QByteArray& name) {
    return place.kind == evidence_kind::registry_hive ? std::vector<QByteArray>{name, name + ".LOG1", name + ".LOG2"}
                                                      : std::vector<QByteArray>{name, "V01*.log", "V01.chk"};
}

// The name in the pattern's case, or empty.
QByteArray spelled(const QByteArray& pattern, const QByteArray& name) {
    const int star = pattern.indexOf('*');
    if (star < 0) {
        return folded(name) == folded(pattern) ? pattern : QByteArray();
    }
    const QByteArray begin = pattern.left(star);
    const QByteArray end = pattern.mid(star + 1);
    const int middle = name.size() - begin.size() - end.size();
    const bool fits =
        middle >= 0 && folded(name.left(star)) == folded(begin) && folded(name.right(end.size())) == folded(end);
    return fits ? begin + name.mid(star, middle) + end : QByteArray();
}

} // namespace

QByteArray packages_folder() {
    return bare(places::packages_folder);
}

const std::vector<wanted_files>& wanted_profile_files() {
    static const std::vector<wanted_files> list = [] {
        std::vector<wanted_files> made;
        for (const evidence_place& place : places::in_profile) {
            const QByteArray path = bare(place.below);
            const int slash = path.lastIndexOf('/');
            made.push_back({path.left(std::max(slash, 0)), names_of(place, path.mid(slash + 1))});
        }
        return made;
    }();
    return list;
}

QByteArray wanted_spelling(const wanted_files& files, const QByteArray& name) {
    for (const QByteArray& pattern : files.names) {
        const QByteArray wanted = spelled(pattern, name);
        if (!wanted.isEmpty()) {
            return wanted;
        }
    }
    return {};
}

QByteArray package_spelling(const QByteArray& name) {
    const QByteArray mark = places::package_mark;
    const int place = name.toLower().indexOf(mark.toLower());
    return place < 0 ? QByteArray() : QByteArray(name).replace(place, mark.size(), mark);
}

bool is_evidence_place(const QByteArray& path) {
    const QByteArray any_case = folded(path);
    const QByteArray users = folded(places::users_folder);
    const int profile = any_case.startsWith(users) ? any_case.indexOf('/', users.size()) : -1;
    const QByteArray in_profile = any_case.mid(profile + 1);
    if (profile < 0) {
        return false;
    }
    for (const wanted_files& wanted : wanted_profile_files()) {
        const QByteArray folder = wanted.folder.isEmpty() ? QByteArray() : folded(wanted.folder) + '/';
        const QByteArray name = in_profile.mid(folder.size());
        if (in_profile.startsWith(folder) && !name.contains('/') && !wanted_spelling(wanted, name).isEmpty()) {
            return true;
        }
    }
    const QByteArray packages = folded(packages_folder()) + '/';
    const int package = in_profile.startsWith(packages) ? in_profile.indexOf('/', packages.size()) : -1;
    const QByteArray in_package = in_profile.mid(package + 1) + '/';
    const bool is_wanted_package =
        package >= 0 && !package_spelling(in_profile.mid(packages.size(), package - packages.size())).isEmpty();
    return is_wanted_package &&
           std::any_of(std::begin(places::in_package), std::end(places::in_package), [&](const evidence_place& place) {
               return in_package.startsWith(folded(bare(place.below)) + '/');
           });
}

QByteArray spelling_in_package(const QByteArray& path) {
    QList<QByteArray> names = path.split('/');
    int most_known = 0;
    QList<QByteArray> best;
    for (const evidence_place& place : places::in_package) {
        const QList<QByteArray> wanted = bare(place.below).split('/');
        int known = 0;
        while (known < wanted.size() && known < names.size() && folded(names[known]) == folded(wanted[known])) {
            ++known;
        }
        if (known > most_known) {
            most_known = known;
            best = wanted;
        }
    }
    for (int i = 0; i < most_known; ++i) {
        names[i] = best[i];
    }
    return names.join('/');
}

} // namespace intake
