// SPDX-License-Identifier: MIT
// Small ESE files for tests, and a reader that keeps every value.
#pragma once

#include "ese/specific_table.h"
#include "samples/ese_writer.h"

#include <QFile>
#include <QMap>
#include <QTemporaryDir>

struct test_table {
    std::string name;
    std::vector<ese_column> columns;
    std::vector<ese_row> rows;
};

inline ese_column test_column(const std::string& name, ese_type type, ese_code_page code_page = ese_code_page::none) {
    ese_column column;
    column.name = name;
    column.type = type;
    column.code_page = code_page;
    return column;
}

inline void write_ese(const QString& path, const std::vector<test_table>& tables, std::uint32_t page_size = 4096) {
    ese_writer file(QFile::encodeName(path).constData(), page_size);
    for (const test_table& table : tables) {
        file.begin_table(table.name, table.columns);
        for (const ese_row& row : table.rows) {
            file.add_row(row);
        }
        file.end_table();
    }
    file.close();
}

// Keeps the text of every value of every record, by column name.
class every_value_reader : public specific_table {
public:
    using specific_table::get_column_name_and_type;
    using specific_table::get_record_values;
    void get_column_name_and_type(libesedb_record_t* record, libesedb_error_t* error) override {
        values = QMap<QString, QByteArray>();
        specific_table::get_column_name_and_type(record, error);
        records.append(values);
    }
    void get_record_values(libesedb_record_t* record, libesedb_error_t* error, QString column_name, int value_index,
                           unsigned int column_type) override {
        const unsigned int type = forced_type >= 0 ? static_cast<unsigned int>(forced_type) : column_type;
        values.insert(column_name, record_type_case(record, value_index, type, error));
    }

    QList<QMap<QString, QByteArray>> records;
    int forced_type = -1; // given to record_type_case instead of the column's own

private:
    QMap<QString, QByteArray> values;
};
