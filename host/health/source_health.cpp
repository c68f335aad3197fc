// SPDX-License-Identifier: MIT
// Goes the way of discovery and tells what discovery passes over without a word.
#include "host/health/source_health.h"

#include "host/health/evidence_files.h"
#include "source/native_names.h"

#include <QFile>

#include <cstring>
#include <sys/stat.h>

namespace {

bool is_left_out(const QByteArray& name) {
    for (const char* const system_folder : {"Public", "Default", "Default User", "All Users"}) {
        if (qstricmp(name.constData(), system_folder) == 0) {
            return true;
        }
    }
    return false;
}

// A place's path without the "/" at its begin and end.
QByteArray without_slashes(const char* below) {
    QByteArray path(below);
    path = path.mid(path.startsWith('/') ? 1 : 0);
    return path.endsWith('/') ? path.chopped(1) : path;
}

mode_t mode_of(const QByteArray& path) {
    struct stat status = {};
    return ::lstat(path.constData(), &status) == 0 ? status.st_mode : 0;
}

} // namespace

QByteArray source_health::users_folder() const {
    return paths.root() == "/" ? QByteArrayLiteral("/Users") : paths.root() + "/Users";
}

QList<system_account> source_health::profiles() {
    QList<system_account> found;
    const QByteArray users = users_folder();
    if (!paths.enter(users)) {
        return found;
    }
    for (const auto& [name, type] : list_folder(users).names) {
        const QByteArray folder = users + '/' + name;
        if (is_left_out(name) || (!S_ISDIR(type) && !S_ISLNK(type))) {
            continue;
        }
        if (S_ISDIR(type) && is_utf8(name)) {
            found.append({QFile::decodeName(name), QStringLiteral("")});
        } else if (S_ISDIR(type)) {
            paths.report().add_problem(shown_path(folder),
                                       QStringLiteral("its name is not UTF-8: it cannot be passed on"));
        } else if (paths.follow(folder).there) {
            paths.report().add_note(shown_path(folder), QStringLiteral("it is a link; not taken for a profile"));
        }
    }
    return found;
}

void source_health::check_account(const system_account& account) {
    const QString names[] = {account.system_user, account.domain_user};
    if (!paths.enter(users_folder())) {
        return;
    }
    bool any = false;
    for (const QString& name : names) {
        if (!name.isEmpty() && (&name == names || name != names[0])) {
            const QByteArray profile = users_folder() + '/' + QFile::encodeName(name);
            any = mode_of(profile) != 0 || any;
            check_profile(profile);
        }
    }
    if (!any) {
        paths.report().add_note(shown_path(users_folder() + '/' + QFile::encodeName(account.system_user)),
                                QStringLiteral("there is no such profile folder"));
    }
}

void source_health::check_profile(const QByteArray& profile) {
    for (const evidence_place& wanted : places::in_profile) {
        check_place(profile, wanted);
    }
    const QByteArray below = without_slashes(places::packages_folder);
    const QByteArray packages = profile + '/' + below;
    if (!paths.enter_parents(profile, below + '/')) {
        return;
    }
    for (const auto& [name, type] : list_folder(packages).names) {
        if (!is_cancelled()) {
            check_package_folder(packages, {name, type});
        }
    }
}

void source_health::check_package_folder(const QByteArray& packages, const listed_name& listed) {
    const QByteArray& name = listed.name;
    const QByteArray folder = packages + '/' + name;
    if (!name.toLower().contains(QByteArray(places::package_mark).toLower()) || S_ISREG(listed.type)) {
        return;
    }
    if (!name.contains(places::package_mark)) {
        paths.report().add_problem(shown_path(folder),
                                   QStringLiteral("it is looked for as %1, in this upper and lower case")
                                       .arg(QLatin1String(places::package_mark)));
    } else if (!is_utf8(name)) {
        paths.report().add_problem(shown_path(folder),
                                   QStringLiteral("its name is not UTF-8: the plugin cannot enter it"));
    } else {
        for (const evidence_place& wanted : places::in_package) {
            check_place(folder, wanted);
        }
    }
}

void source_health::check_place(const QByteArray& folder, const evidence_place& wanted) {
    const QList<QByteArray> tables = QByteArray(wanted.tables).split(' ');
    bool is_wanted = false;
    for (const QByteArray& table : tables) {
        is_wanted = is_wanted || selected.contains(QLatin1String(table));
    }
    const QByteArray below = without_slashes(wanted.below);
    if (!is_wanted || is_cancelled() || !paths.enter_parents(folder, below)) {
        return;
    }
    const QByteArray path = folder + '/' + below;
    if (wanted.kind == evidence_kind::folder_tree) {
        check_evidence_tree(path, paths, is_cancelled);
    } else {
        check_evidence_file(path, wanted.kind, paths, is_cancelled);
    }
}
