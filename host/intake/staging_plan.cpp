// SPDX-License-Identifier: MIT
// A name in the very case that is looked for goes before others; what is passed over is told.
#include "host/intake/staging_plan.h"

#include "host/intake/names.h"
#include "host/intake/wanted_parts.h"
#include "source/native_names.h"

#include <climits>

namespace intake {

void staging_plan::add_profile(const QByteArray& profile) {
    const QByteArray staged = joined("Users", profile);
    found_entry found;
    if (!find_folder(top.path, staged, found)) {
        if (!found.there && found.problem.isEmpty()) {
            findings.add_problem(shown_path(joined(top.path, staged)),
                                 QStringLiteral("there is no such profile folder"));
        }
        return;
    }
    const planned_entry folder{found.path, staged, found.entry};
    if (may_add(folder)) {
        planned_folders.append(folder);
        add_files(found.path, staged);
        add_packages(found.path, staged);
    }
}

// True when it is there and a folder. That it is not there is for the caller to tell, all else is told here.
bool staging_plan::find_folder(const QByteArray& base, const QByteArray& wanted, found_entry& found) {
    found = finder.find(base, wanted);
    for (const QByteArray& twin : qAsConst(found.twins)) {
        findings.add_problem(shown_path(twin),
                             QStringLiteral("passed over: another one's name differs in upper and lower case only"));
    }
    if (found.there && found.entry.kind != entry_kind::folder) {
        found.problem = found.entry.kind == entry_kind::link ? QStringLiteral("it is a link; not followed")
                                                             : QStringLiteral("it is not a folder");
    }
    if (!found.problem.isEmpty()) {
        findings.add_problem(shown_path(found.path), found.problem);
    }
    return found.there && found.problem.isEmpty();
}

view_listing staging_plan::listed(const QByteArray& folder) {
    view_listing listing = finder.list(folder);
    if (!listing.problem.isEmpty()) {
        findings.add_problem(shown_path(folder), listing.problem);
    }
    return listing;
}

void staging_plan::add_files(const QByteArray& profile, const QByteArray& staged_profile) {
    for (const wanted_files& wanted : wanted_profile_files()) {
        found_entry folder;
        folder.path = profile;
        if (!wanted.folder.isEmpty() && !find_folder(profile, wanted.folder, folder)) {
            continue;
        }
        QVector<planned_entry> other_case;
        for (const view_entry& entry : listed(folder.path).entries) {
            const QByteArray name = finder.windows_name(entry.name);
            const QByteArray spelled = wanted_spelling(wanted, name);
            const planned_entry planned{joined(folder.path, entry.name),
                                        joined(joined(staged_profile, wanted.folder), spelled), entry};
            if (spelled == name && !spelled.isEmpty()) {
                add_file(planned);
            } else if (!spelled.isEmpty()) {
                other_case.append(planned);
            }
        }
        for (const planned_entry& planned : qAsConst(other_case)) {
            add_file(planned);
        }
    }
}

void staging_plan::add_packages(const QByteArray& profile, const QByteArray& staged_profile) {
    found_entry packages;
    if (!find_folder(profile, packages_folder(), packages)) {
        return;
    }
    for (const view_entry& entry : listed(packages.path).entries) {
        const QByteArray spelled = package_spelling(finder.windows_name(entry.name));
        const planned_entry package{joined(packages.path, entry.name),
                                    joined(joined(staged_profile, packages_folder()), spelled), entry};
        if (spelled.isEmpty() || entry.kind == entry_kind::file) {
            continue;
        }
        if (entry.kind != entry_kind::folder) {
            findings.add_problem(shown_path(package.source), QStringLiteral("it is not a folder"));
        } else if (may_add(package)) {
            planned_folders.append(package);
            add_package(package.source, package.path);
        }
    }
}

void staging_plan::add_package(const QByteArray& package, const QByteArray& staged_package) {
    QVector<open_folder> folders{{package, {}}};
    while (!folders.isEmpty() && !is_cancelled() && !is_full) {
        const open_folder folder = folders.takeLast();
        for (const view_entry& entry : listed(folder.source).entries) {
            add_in_package(staged_package, folder, entry, folders);
        }
    }
}

void staging_plan::add_in_package(const QByteArray& staged_package, const open_folder& folder, const view_entry& entry,
                                  QVector<open_folder>& folders) {
    const QByteArray name = finder.windows_name(entry.name);
    const QByteArray path = joined(folder.path, name);
    const planned_entry planned{joined(folder.source, entry.name), joined(staged_package, spelling_in_package(path)),
                                entry};
    if (name.isEmpty() || planned.source.size() >= PATH_MAX) {
        findings.add_problem(shown_path(planned.source), QStringLiteral("its name cannot be used; left out"));
    } else if (entry.kind != entry_kind::folder) {
        add_file(planned);
    } else if (may_add(planned)) {
        planned_folders.append(planned);
        folders.append({planned.source, path});
    }
}

void staging_plan::add_file(const planned_entry& file) {
    const view_entry& entry = file.entry;
    const QString path = shown_path(file.source);
    if (entry.kind != entry_kind::file) {
        findings.add_problem(path, entry.kind == entry_kind::link ? QStringLiteral("it is a link; not followed")
                                   : !entry.unreadable.isEmpty()  ? entry.unreadable
                                                                  : QStringLiteral("it is not a regular file"));
    } else if (!entry.unreadable.isEmpty()) {
        findings.add_problem(path, entry.unreadable);
    } else if (entry.size > limit.largest_file || entry.size > limit.most_bytes - bytes) {
        findings.add_problem(path, QStringLiteral("it is too large to be staged (%1 bytes)").arg(entry.size));
    } else if (may_add(file)) {
        bytes += qMax(qint64{0}, entry.size);
        planned_files.append(file);
    }
}

bool staging_plan::may_add(const planned_entry& planned) {
    const QString path = shown_path(planned.source);
    if (planned_files.size() + planned_folders.size() >= limit.most_entries) {
        if (!is_full) {
            findings.add_problem(path, QStringLiteral("more than %1 files and folders: this one and those after it are "
                                                      "left out")
                                           .arg(limit.most_entries));
        }
        is_full = true;
        return false;
    }
    const bool is_used = used.contains(planned.path);
    const QByteArray any_case = folded(planned.path);
    if (is_used && planned.entry.kind != entry_kind::folder) {
        findings.add_problem(path,
                             QStringLiteral("passed over: another one's name differs in upper and lower case only"));
        return false;
    }
    if (used_folded.contains(any_case)) {
        findings.add_note(path, QStringLiteral("another one's name differs in upper and lower case only"));
    }
    used.insert(planned.path);
    used_folded.insert(any_case);
    return true;
}

} // namespace intake
