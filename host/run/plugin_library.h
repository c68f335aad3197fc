// SPDX-License-Identifier: MIT
// Loads the plugin library through its one symbol. It stays loaded: Qt keeps pointers into it.
#pragma once

#include "contract/host_interface.h"

#include <QString>

struct plugin_library {
    create_object_function create = nullptr; // null: it cannot be loaded
    QString reason;                          // why
};

// The file to load, absolute. wished: empty for libcortana.so beside the program, then for the one that was
// installed with it. Needs the application object.
QString plugin_library_file(const QString& wished);

// file: absolute.
plugin_library load_plugin_library(const QString& file);
