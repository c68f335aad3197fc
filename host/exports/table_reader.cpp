// SPDX-License-Identifier: MIT
// The cells point into SQLite's own row.
#include "host/exports/table_reader.h"

#include "host/record/links_file.h"

#include <QFile>

namespace {

export_cell cell_at(sqlite3_stmt* row, int column) {
    export_cell cell;
    const auto take_bytes = [&](export_cell::storage type, const void* bytes) {
        cell.type = type;
        cell.bytes = {static_cast<const char*>(bytes), static_cast<std::size_t>(sqlite3_column_bytes(row, column))};
    };
    switch (sqlite3_column_type(row, column)) {
    case SQLITE_INTEGER:
        cell.type = export_cell::integer;
        cell.whole = sqlite3_column_int64(row, column);
        break;
    case SQLITE_FLOAT:
        cell.type = export_cell::real;
        cell.fraction = sqlite3_column_double(row, column);
        break;
    case SQLITE_TEXT:
        take_bytes(export_cell::text, sqlite3_column_text(row, column));
        break;
    case SQLITE_BLOB:
        take_bytes(export_cell::blob, sqlite3_column_blob(row, column));
        break;
    default:
        break;
    }
    return cell;
}

// False: the memory does not suffice for a value.
bool fill_row(sqlite3_stmt* source, const QTimeZone& zone, export_row& row) {
    for (std::size_t i = 0; i < row.cells.size(); ++i) {
        export_cell& cell = row.cells[i];
        cell = cell_at(source, static_cast<int>(i));
        if (cell.type == export_cell::text && !cell.bytes.data()) {
            return false;
        }
        if (row.table.columns[static_cast<int>(i)].kind != column_kind::time) {
            continue;
        }
        export_time& time = row.times[i];
        time.is_time = cell.type == export_cell::integer && is_time(cell.whole);
        if (time.is_time) {
            time.seconds = cell.whole;
            put_utc_text(time.seconds, time.utc);
            if (row.table.with_zone) {
                put_zone_text(time.seconds, zone, time.in_zone);
            }
        }
    }
    int next = static_cast<int>(row.cells.size());
    for (export_cell& cell : row.beside) {
        cell = cell_at(source, next++);
    }
    return true;
}

} // namespace

table_reader::table_reader(const QString& file) : database(open_for_reading(file, trouble)) {
    if (trouble.isEmpty() && QFile::exists(links_file(file))) {
        links = attach_links(links_file(file));
    }
    if (trouble.isEmpty() && sqlite3_exec(database.get(), "begin", nullptr, nullptr, nullptr) != SQLITE_OK) {
        fail();
    }
}

// Attached files are read-only like the first.
bool table_reader::attach_links(const QString& file) {
    sqlite3_stmt* prepared = nullptr;
    sqlite3_prepare_v2(database.get(), "attach database ? as links", -1, &prepared, nullptr);
    const statement_handle statement(prepared);
    const QByteArray path = path_for_sqlite(file);
    const bool done = sqlite3_bind_text(prepared, 1, path.constData(), path.size(), SQLITE_STATIC) == SQLITE_OK &&
                      sqlite3_step(prepared) == SQLITE_DONE;
    return done || fail();
}

bool table_reader::fail() {
    if (trouble.isEmpty()) {
        trouble = error_of(database.get());
    }
    return false;
}

statement_handle table_reader::prepare(const export_table& table) {
    sqlite3_stmt* prepared = nullptr;
    if (!trouble.isEmpty() ||
        sqlite3_prepare_v2(database.get(), table.select.constData(), -1, &prepared, nullptr) != SQLITE_OK) {
        fail();
    }
    return statement_handle(prepared);
}

bool table_reader::holds(const char* schema, const char* table, const char* column) {
    return trouble.isEmpty() && sqlite3_table_column_metadata(database.get(), schema, table, column, nullptr, nullptr,
                                                              nullptr, nullptr, nullptr) == SQLITE_OK;
}

bool table_reader::read_plain(const QByteArray& select, const plain_row_sink& take) {
    sqlite3_stmt* prepared = nullptr;
    if (!trouble.isEmpty() ||
        sqlite3_prepare_v2(database.get(), select.constData(), -1, &prepared, nullptr) != SQLITE_OK) {
        return fail();
    }
    const statement_handle statement(prepared);
    QVector<QByteArray> names;
    for (int i = 0; i < sqlite3_column_count(prepared); ++i) {
        names.append(sqlite3_column_name(prepared, i));
    }
    std::vector<export_cell> cells(static_cast<std::size_t>(names.size()));
    int step = sqlite3_step(prepared);
    for (; step == SQLITE_ROW; step = sqlite3_step(prepared)) {
        for (std::size_t i = 0; i < cells.size(); ++i) {
            cells[i] = cell_at(prepared, static_cast<int>(i));
        }
        if (!take(names, cells)) {
            return false;
        }
    }
    return step == SQLITE_DONE || fail();
}

bool table_reader::read(const export_table& table, const QTimeZone& zone,
                        const std::function<bool(const export_row&)>& take) {
    const statement_handle statement = prepare(table);
    sqlite3_stmt* const prepared = statement.get();
    if (!prepared) {
        return false;
    }
    const auto columns = static_cast<std::size_t>(table.columns.size());
    export_row row{table, std::vector<export_cell>(columns), std::vector<export_time>(columns),
                   std::vector<export_cell>(static_cast<std::size_t>(table.beside.size()))};
    int step = sqlite3_step(prepared);
    for (; step == SQLITE_ROW; step = sqlite3_step(prepared)) {
        if (!fill_row(prepared, zone, row)) {
            return fail();
        }
        if (!take(row)) {
            return false;
        }
    }
    return step == SQLITE_DONE || fail();
}
