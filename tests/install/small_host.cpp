// SPDX-License-Identifier: MIT
// The smallest host: loads the plugin and extracts the profile "anna" of a source into a folder.
// small_host PLUGIN SOURCE/ RESULT
#include "contract/host_interface.h"

#include <QApplication>

#include <cstdio>
#include <dlfcn.h>

int main(int count, char** words) {
    const QApplication application(count, words);
    void* const library = count == 4 ? ::dlopen(words[1], RTLD_NOW | RTLD_LOCAL) : nullptr;
    void* const symbol = library != nullptr ? ::dlsym(library, create_object_symbol) : nullptr;
    if (symbol == nullptr) {
        std::fprintf(stderr, "small_host: the plugin cannot be loaded\n");
        return 1;
    }
    auto* const plugin = static_cast<host_interface*>(reinterpret_cast<create_object_function>(symbol)());
    struct_GLOBAL_COMMON_VANTOR_AND_ARTIFACT_source_info source;
    source.fs_extraction_source_path = QString::fromLocal8Bit(words[2]);
    source.os_scheme_internal = "winOS";
    source.system_account_QList.append(system_account{"anna", ""});
    plugin->pub_set_essentials();
    plugin->pub_set_engine_type(0);
    plugin->pub_set_general_info({});
    plugin->pub_set_source_info(source);
    plugin->pub_set_source_count(1);
    plugin->pub_set_essential_for_vantor_desk_extraction({"searches", "cookies"}, {});
    plugin->pub_set_result_directory(QString::fromLocal8Bit(words[3]));
    plugin->pub_create_db_tables();
    plugin->pub_find_source_file();
    plugin->pub_extract_artifacts();
    plugin->pub_remove_temporary_asthetics();
    std::puts(qPrintable(plugin->pub_get_artifact_name()));
    delete plugin;
    return 0;
}
