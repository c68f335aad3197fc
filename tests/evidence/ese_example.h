// SPDX-License-Identifier: MIT
// What the tests of ESE files share: an example file and made-up bytes.
#pragma once

#include "evidence/ese_writer.h"

#include <QByteArray>
#include <QTemporaryDir>

constexpr std::uint32_t page_sizes[] = {4096, 8192, 32768};

// Bytes that differ from offset to offset and from seed to seed, so that a mix-up shows.
inline std::string pattern(std::size_t size, unsigned seed) {
    std::string result(size, '\0');
    for (char& byte : result) {
        seed = seed * 1664525U + 1013904223U;
        byte = static_cast<char>(seed >> 24);
    }
    return result;
}

inline QByteArray array(const std::string& bytes) {
    return QByteArray(bytes.data(), static_cast<int>(bytes.size()));
}

inline ese_column column(std::uint32_t id, ese_type type, ese_code_page code_page = {}, std::uint32_t size = 0) {
    return {id, "column " + std::to_string(id), type, code_page, size};
}

// A folder for one file at a time.
class example_file {
public:
    QString path() const { return folder.filePath(QStringLiteral("test.edb")); }
    std::string std_path() const { return path().toStdString(); }
    // The file with one table, "Table".
    void write(std::uint32_t page_size, const std::vector<ese_column>& columns,
               const std::vector<ese_row>& rows) const {
        ese_writer file(std_path(), page_size);
        add_table(file, "Table", columns, rows);
        file.close();
    }
    static void add_table(ese_writer& file, const std::string& name, const std::vector<ese_column>& columns,
                          const std::vector<ese_row>& rows) {
        file.begin_table(name, columns);
        for (const auto& row : rows) {
            file.add_row(row);
        }
        file.end_table();
    }

private:
    QTemporaryDir folder;
};
