// SPDX-License-Identifier: MIT
// Finds the files that the extractors read: a fixed set of places in every user profile of the source.
#include "common/plugin_static_function.h"
#include "common/text_decoding.h"
#include "plugin/cortana_winos.h"
#include "source/directory_walk.h"
#include "source/source_guard.h"

namespace {

const QString function_text = QStringLiteral("void cortana_winos::find_source_file()");

// A place below a profile or package folder, and the list that its path goes to when it exists.
struct place {
    const char* below;
    QStringList* found;
};

void add_existing(const QString& folder, const place& wanted, source_guard& guard) {
    const QString path = folder + QLatin1String(wanted.below);
    if (guard.exists(path)) {
        plugin_static_function::app_debug(QStringLiteral("---- FILE EXIST--") + path, function_text);
        wanted.found->append(path);
    }
}

} // namespace

void cortana_winos::winos_set_source_info(struct_GLOBAL_COMMON_VANTOR_AND_ARTIFACT_source_info source_info) {
    fs_extraction_source_path = source_info.fs_extraction_source_path;
    source_path_2 = source_info.source_path_2;
    os_scheme_display = never_null(source_info.os_scheme_display); // written into rows
    user_name_list.clear();
    for (const auto& account : qAsConst(source_info.system_account_QList)) {
        user_name_list << account.system_user << account.domain_user;
    }
    user_name_list.removeDuplicates();
    user_name_list.removeAll(QString());
}

void cortana_winos::winos_find_artifacts_source() {
    find_source_file();
}

void cortana_winos::find_source_file() {
    plugin_static_function::app_debug(QStringLiteral("[find_source_file]---STARTS---"), function_text);
    for (QStringList* list : {&indexed_db_file_list, &cortana_core_db_file_list, &webcache_file_list, &speech_dir_list,
                              &graph_dir_list, &ntuser_file_list}) {
        list->clear();
    }
    source_guard guard(fs_extraction_source_path);
    for (const QString& user : qAsConst(user_name_list)) {
        const QString profile = fs_extraction_source_path + QStringLiteral("Users/") + user;
        for (const place& wanted :
             {place{"/AppData/Local/Microsoft/Windows/WebCache/WebCacheV01.dat", &webcache_file_list},
              place{"/NTUSER.DAT", &ntuser_file_list}}) {
            add_existing(profile, wanted, guard);
        }
        if (!find_in_packages(profile + QStringLiteral("/AppData/Local/Packages/"), guard)) {
            return;
        }
    }
    plugin_static_function::app_debug(QStringLiteral("[find_source_file]---ENDS---"), function_text);
}

bool cortana_winos::find_in_packages(const QString& packages, source_guard& guard) {
    const place in_package[] = {
        {"/AppData/Indexed DB/IndexedDB.edb", &indexed_db_file_list},
        {"/LocalState/ESEDatabase_CortanaCoreInstance/CortanaCoreDb.dat", &cortana_core_db_file_list},
        {"/LocalState/LocalRecorder/Speech/", &speech_dir_list},
        {"/LocalState/Graph/", &graph_dir_list},
    };
    if (!guard.exists(packages)) {
        return true;
    }
    return walk_entries_in(packages, [&](const walk_entry& entry) {
        if (bool_cancel_extraction) {
            return false;
        }
        const QString name = entry.path.mid(packages.size());
        if (name.contains(QLatin1String("Microsoft.Windows.Cortana"))) {
            for (const place& wanted : in_package) {
                add_existing(packages + name, wanted, guard);
            }
        }
        return true;
    });
}
