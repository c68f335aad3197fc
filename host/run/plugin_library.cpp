// SPDX-License-Identifier: MIT
// dlopen(3) with local symbols, so that the plugin's own and the host's do not mix.
#include "host/run/plugin_library.h"

#include "host/run/program_files.h"

#include <QFile>
#include <QFileInfo>

#include <dlfcn.h>

QString plugin_library_file(const QString& wished) {
    // A name without "/" would be looked for in the system's library folders.
    return wished.isEmpty() ? program_file(QStringLiteral("libcortana.so")) : QFileInfo(wished).absoluteFilePath();
}

plugin_library load_plugin_library(const QString& file) {
    plugin_library library;
    void* const opened = ::dlopen(QFile::encodeName(file).constData(), RTLD_NOW | RTLD_LOCAL);
    void* const symbol = opened != nullptr ? ::dlsym(opened, create_object_symbol) : nullptr;
    if (symbol == nullptr) {
        const char* const reason = ::dlerror();
        library.reason = QString::fromLocal8Bit(reason != nullptr ? reason : "it has no entry");
        return library;
    }
    library.create = reinterpret_cast<create_object_function>(symbol);
    return library;
}
