// SPDX-License-Identifier: MIT
// The places are those where the plugin looks. They are told here a second time because the host links nothing of it.
#include "host/source_health.h"

#include "host/evidence_files.h"
#include "host/native_files.h"

#include <QFile>

#include <cstring>
#include <sys/stat.h>

// A file or folder that rows come from, and the tables that they go to.
struct source_health::place {
    const char* below; // path below a profile or package folder
    evidence_kind kind;
    const char* tables; // separated by blanks
};

namespace {

const char* const package_mark = "Microsoft.Windows.Cortana";

bool is_left_out(const QByteArray& name) {
    for (const char* const system_folder : {"Public", "Default", "Default User", "All Users"}) {
        if (qstricmp(name.constData(), system_folder) == 0) {
            return true;
        }
    }
    return false;
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
    for (const QByteArray& name : list_folder(users).names) {
        const QByteArray folder = users + '/' + name;
        const mode_t mode = mode_of(folder);
        if (is_left_out(name) || (!S_ISDIR(mode) && !S_ISLNK(mode))) {
            continue;
        }
        if (S_ISDIR(mode) && is_utf8(name)) {
            found.append({QFile::decodeName(name), QStringLiteral("")});
        } else if (S_ISDIR(mode)) {
            paths.report().add_problem(text_of(folder),
                                       QStringLiteral("its name is not UTF-8: it cannot be passed on"));
        } else if (paths.follow(folder).there) {
            paths.report().add_note(text_of(folder), QStringLiteral("it is a link; not taken for a profile"));
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
        paths.report().add_note(text_of(users_folder() + '/' + QFile::encodeName(account.system_user)),
                                QStringLiteral("there is no such profile folder"));
    }
}

void source_health::check_profile(const QByteArray& profile) {
    static const place in_profile[] = {
        {"AppData/Local/Microsoft/Windows/WebCache/WebCacheV01.dat", evidence_kind::ese_database,
         "cache_files cookies domstore"},
        {"NTUSER.DAT", evidence_kind::registry_hive, "searches"},
    };
    for (const place& wanted : in_profile) {
        check_place(profile, wanted);
    }
    const QByteArray packages = profile + "/AppData/Local/Packages";
    if (!paths.enter_parents(profile, "AppData/Local/Packages/")) {
        return;
    }
    for (const QByteArray& name : list_folder(packages).names) {
        if (!is_cancelled()) {
            check_package_folder(packages, name);
        }
    }
}

void source_health::check_package_folder(const QByteArray& packages, const QByteArray& name) {
    static const place in_package[] = {
        {"LocalState/ESEDatabase_CortanaCoreInstance/CortanaCoreDb.dat", evidence_kind::ese_database,
         "time_reminders place_reminders contact_triggers"},
        {"LocalState/LocalRecorder/Speech", evidence_kind::folder_tree, "latest_audio_search"},
        {"LocalState/Graph", evidence_kind::folder_tree, "graphed_cache"},
    };
    const QByteArray folder = packages + '/' + name;
    const mode_t mode = mode_of(folder);
    if (!name.toLower().contains(QByteArray(package_mark).toLower()) || S_ISREG(mode)) {
        return;
    }
    if (!name.contains(package_mark)) {
        paths.report().add_problem(
            text_of(folder),
            QStringLiteral("it is looked for as %1, in this upper and lower case").arg(QLatin1String(package_mark)));
    } else if (!is_utf8(name)) {
        paths.report().add_problem(text_of(folder),
                                   QStringLiteral("its name is not UTF-8: the plugin cannot enter it"));
    } else {
        for (const place& wanted : in_package) {
            check_place(folder, wanted);
        }
    }
}

void source_health::check_place(const QByteArray& folder, const place& wanted) {
    const QList<QByteArray> tables = QByteArray(wanted.tables).split(' ');
    bool is_wanted = false;
    for (const QByteArray& table : tables) {
        is_wanted = is_wanted || selected.contains(QLatin1String(table));
    }
    if (!is_wanted || is_cancelled() || !paths.enter_parents(folder, wanted.below)) {
        return;
    }
    const QByteArray path = folder + '/' + wanted.below;
    if (wanted.kind == evidence_kind::folder_tree) {
        check_evidence_tree(path, paths, is_cancelled);
    } else {
        check_evidence_file(path, wanted.kind, paths);
    }
}
