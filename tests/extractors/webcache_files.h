// SPDX-License-Identifier: MIT
// WebCacheV01.dat files of a test case, and what the tests read from the rows.
#pragma once

#include "evidence/webcache_schema.h"
#include "tests/support/test_support.h"

#include <QDir>

inline QString database_of(const test_case_folder& folder, const QString& user) {
    return folder.root() + QStringLiteral("Users/") + user +
           QStringLiteral("/AppData/Local/Microsoft/Windows/WebCache/WebCacheV01.dat");
}

struct stored_container {
    webcache_container listed;
    std::vector<webcache_entry> entries;
    bool has_table = true;
};

// Containers get the ids 1, 2, ...
inline void write_database(const QString& path, const std::vector<stored_container>& containers) {
    QDir().mkpath(QFileInfo(path).path());
    ese_writer file(QFile::encodeName(path).constData());
    std::vector<webcache_container> listed;
    for (const stored_container& container : containers) {
        listed.push_back(container.listed);
        listed.back().id = static_cast<std::int64_t>(listed.size());
    }
    write_webcache_containers(file, listed);
    std::int64_t id = 0;
    for (const stored_container& container : containers) {
        ++id;
        if (container.has_table) {
            write_webcache_entries(file, id, container.entries);
        }
    }
    file.close();
}

// In a directory of Cortana's, with one secure sub-directory.
inline stored_container cortana(const char* name, const std::vector<webcache_entry>& entries) {
    return {{0, name, R"(C:\Cortana\)", "ABCD1234"}, entries};
}

// The column's values in row order, as type:value, and the file names alone.
inline QString column_of(const QString& table, const QString& column, const test_case_folder& folder) {
    return folder.dump(table, {column}).join(QStringLiteral("; ")).remove(column + QLatin1Char('='));
}

inline QString file_names(const test_case_folder& folder, const QString& table = QStringLiteral("cache_files")) {
    return column_of(table, QStringLiteral("file_name"), folder).remove(QStringLiteral("text:"));
}
