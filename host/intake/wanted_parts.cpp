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

// Every place that is looked into, folded, folders with a "/" at the end.
struct folded_places {
    QByteArray users = folded(places::users_folder);
    std::vector<QByteArray> file_folders; // of wanted_profile_files(), below a profile; the profile itself: empty
    QByteArray packages = folded(packages_folder()) + '/';
    std::vector<QByteArray> in_package;

    folded_places() {
        for (const wanted_files& wanted : wanted_profile_files()) {
            file_folders.push_back(wanted.folder.isEmpty() ? QByteArray() : folded(wanted.folder) + '/');
        }
        for (const evidence_place& place : places::in_package) {
            in_package.push_back(folded(bare(place.below)) + '/');
        }
    }
};

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
    static const folded_places known;
    const QByteArray any_case = folded(path);
    const int profile = any_case.startsWith(known.users) ? any_case.indexOf('/', known.users.size()) : -1;
    const QByteArray in_profile = any_case.mid(profile + 1);
    if (profile < 0) {
        return false;
    }
    for (size_t i = 0; i < known.file_folders.size(); ++i) {
        const QByteArray& folder = known.file_folders[i];
        const bool is_in_folder = in_profile.startsWith(folder) && in_profile.indexOf('/', folder.size()) < 0;
        if (is_in_folder && !wanted_spelling(wanted_profile_files()[i], in_profile.mid(folder.size())).isEmpty()) {
            return true;
        }
    }
    const int package = in_profile.startsWith(known.packages) ? in_profile.indexOf('/', known.packages.size()) : -1;
    const QByteArray in_package = in_profile.mid(package + 1) + '/';
    return package >= 0 &&
           std::any_of(known.in_package.begin(), known.in_package.end(),
                       [&](const QByteArray& folder) { return in_package.startsWith(folder); }) &&
           !package_spelling(in_profile.mid(known.packages.size(), package - known.packages.size())).isEmpty();
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
