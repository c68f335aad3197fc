// SPDX-License-Identifier: MIT
// Where the system keeps things is taken from Debian, where this process has its own from the process.
#include "host/run/runtime_paths.h"

#include <QFile>
#include <QLibraryInfo>

#include <cstdlib>
#include <link.h>

namespace {

constexpr const char* system_paths[] = {
    "/lib", "/lib64", "/usr/lib", "/usr/lib64", "/usr/local/lib", "/etc/ld.so.cache", "/usr/share/locale",
    "/usr/share/zoneinfo", "/etc/localtime", "/etc/timezone",
    // Without its settings the font library, which Qt starts, complains on standard error.
    "/etc/fonts", "/usr/share/fontconfig", "/dev/null", "/dev/urandom", "/dev/random", "/proc/self", "/proc/meminfo",
    "/proc/sys/vm/overcommit_memory", "/sys/devices/system/cpu"};

constexpr const char* folder_variables[] = {"LD_LIBRARY_PATH", "QT_PLUGIN_PATH", "QT_QPA_PLATFORM_PLUGIN_PATH",
                                            "LOCPATH", "TZDIR"};

void add_folders_of(const char* variable, QVector<QByteArray>& paths) {
    for (const QByteArray& folder : QByteArray(std::getenv(variable)).split(':')) {
        if (!folder.isEmpty()) {
            paths.append(folder);
        }
    }
}

// The folder of each library that is loaded now: what it brings along later stands beside it.
int add_library_folder(dl_phdr_info* library, std::size_t, void* paths) {
    const QByteArray file(library->dlpi_name);
    const QByteArray folder = file.left(file.lastIndexOf('/'));
    auto& list = *static_cast<QVector<QByteArray>*>(paths);
    if (!folder.isEmpty() && folder != file && !list.contains(folder)) {
        list.append(folder);
    }
    return 0;
}

} // namespace

QVector<QByteArray> runtime_paths() {
    QVector<QByteArray> paths;
    for (const char* const path : system_paths) {
        paths.append(path);
    }
    for (const char* const variable : folder_variables) {
        add_folders_of(variable, paths);
    }
    ::dl_iterate_phdr(add_library_folder, &paths);
    paths.append(QFile::encodeName(QLibraryInfo::location(QLibraryInfo::PluginsPath)));
    return paths;
}
