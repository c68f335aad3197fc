// SPDX-License-Identifier: MIT
// There is no journal: the files are made anew each time, so a failure costs nothing but the work.
#include "host/batch/merged_database.h"

#include "host/record/links_file.h"
#include "host/run/link_database.h"
#include "result_db/schema.h"

#include <QFile>
#include <QUrl>

namespace batch {
namespace {

constexpr const char* sources_statement =
    "create table sources(source text primary key,number integer not null,id text not null unique,path text not null,"
    "type text not null,sha256 text,outcome text not null,reason text,version text,result_sha256 text,"
    "rows integer not null) without rowid";

// As SQLite's own words for a file: read as one that nobody changes, so that no lock and no journal is looked for.
QByteArray unchanging(const QString& file) {
    return "file:" + QUrl::toPercentEncoding(QFile::decodeName(path_for_sqlite(file)), "/") + "?mode=ro&immutable=1";
}

statement_handle prepared(sqlite3* database, const QByteArray& text) {
    sqlite3_stmt* statement = nullptr;
    sqlite3_prepare_v2(database, text.constData(), text.size() + 1, &statement, nullptr);
    return statement_handle(statement);
}

bool is_through(sqlite3_stmt* statement) {
    return statement && sqlite3_step(statement) == SQLITE_DONE;
}

bool bind(sqlite3_stmt* statement, int place, const QString& text) {
    const QByteArray bytes = text.toUtf8();
    return statement && (text.isEmpty() ? sqlite3_bind_null(statement, place)
                                        : sqlite3_bind_text(statement, place, bytes.constData(), bytes.size(),
                                                            SQLITE_TRANSIENT)) == SQLITE_OK;
}

QByteArray columns_of(sqlite3* database, const QByteArray& table) {
    const statement_handle names =
        prepared(database, "select name from pragma_table_info('" + table + "') where name<>'INT'");
    QByteArray list;
    while (names && sqlite3_step(names.get()) == SQLITE_ROW) {
        list += ',';
        list += reinterpret_cast<const char*>(sqlite3_column_text(names.get(), 0));
    }
    return list;
}

} // namespace

bool merged_database::fail() {
    if (trouble.isEmpty()) {
        trouble = error_of(database.get());
    }
    return false;
}

bool merged_database::run(const char* statement) {
    return sqlite3_exec(database.get(), statement, nullptr, nullptr, nullptr) == SQLITE_OK || fail();
}

bool merged_database::create(const QString& wanted) {
    constexpr int flags = SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE | SQLITE_OPEN_URI | SQLITE_OPEN_NOMUTEX;
    sqlite3* opened = nullptr;
    file = wanted;
    const int code = sqlite3_open_v2(path_for_sqlite(file).constData(), &opened, flags, nullptr);
    database.reset(opened);
    if (code != SQLITE_OK || sqlite3_db_config(opened, SQLITE_DBCONFIG_TRUSTED_SCHEMA, 0, nullptr) != SQLITE_OK) {
        return fail();
    }
    bool done = run("pragma page_size=32768") && run("pragma journal_mode=off") && run("pragma synchronous=off") &&
                run("pragma locking_mode=exclusive") && run("pragma cache_size=-65536") && run("begin");
    for (const result_table& table : result_tables()) {
        done = done && run(table.create_statement);
        columns.insert(table.name, columns_of(opened, table.name));
        last_keys.insert(table.name, 0);
    }
    return done && run(sources_statement) && run("commit");
}

bool merged_database::attach(const QString& attached, const char* name, const QByteArray& query) {
    const statement_handle statement = prepared(database.get(), "attach ? as " + QByteArray(name));
    const QByteArray path = query.isEmpty() ? path_for_sqlite(attached) : query;
    return (statement &&
            sqlite3_bind_text(statement.get(), 1, path.constData(), path.size(), SQLITE_STATIC) == SQLITE_OK &&
            is_through(statement.get())) ||
           fail();
}

bool merged_database::make_links() {
    if (has_links) {
        return true;
    }
    bool done = attach(links_file(file), "links", {}) && run("pragma links.page_size=32768") &&
                run("pragma links.journal_mode=off") && run("pragma links.synchronous=off") && run("begin");
    for (const char* const statement : links_schema()) {
        QByteArray text(statement);
        done = done && run(text.replace("if not exists ", "links.").constData());
    }
    // Its rows have no key and no other column that tells the source.
    has_links = done && run("commit") && run("alter table links.reminders_not_shown add column source text");
    return has_links;
}

// Tables of the attached file that are there in the same words.
bool merged_database::has_same_tables(const char* schema, const char* attached, int wanted) {
    const QByteArray text = "select count(*) from " + QByteArray(schema) + ".sqlite_master m join " + attached +
                            ".sqlite_master a using(type,name,sql) where m.type='table'";
    const statement_handle count = prepared(database.get(), text);
    if (!count || sqlite3_step(count.get()) != SQLITE_ROW) {
        return fail();
    }
    if (sqlite3_column_int(count.get(), 0) != wanted) {
        trouble = QStringLiteral("its tables are of another version than this program's");
        return false;
    }
    return true;
}

bool merged_database::copy_tables(qint64& rows) {
    for (auto table = columns.constBegin(); table != columns.constEnd(); ++table) {
        const QByteArray& names = table.value();
        const statement_handle insert =
            prepared(database.get(), "insert into main." + table.key() + "(INT" + names + ") select INT+?" + names +
                                         " from one." + table.key() + " order by INT");
        if (!insert || sqlite3_bind_int64(insert.get(), 1, last_keys[table.key()]) != SQLITE_OK ||
            !is_through(insert.get())) {
            return fail();
        }
        const int added = sqlite3_changes(database.get());
        if (added > 0) {
            last_keys[table.key()] = sqlite3_last_insert_rowid(database.get());
            rows += added;
        }
    }
    return true;
}

bool merged_database::copy_links(const QMap<QByteArray, qint64>& keys_before, const QString& source) {
    constexpr const char* others = "reminder_link,why,linked_title,linked_text,linked_creation_time,"
                                   "linked_last_update_time,linked_last_access_time,linked_completion_time";
    constexpr const char* not_shown =
        "system_user,source_file,title,text,creation_time,last_update_time,last_access_time,completion_time";
    for (auto keys = keys_before.constBegin(); keys != keys_before.constEnd(); ++keys) {
        const QByteArray text = "insert into links.reminder_links(table_name,INT," + QByteArray(others) +
                                ") select table_name,INT+?1," + others +
                                " from its_links.reminder_links where table_name='" + keys.key() + "' order by INT";
        const statement_handle insert = prepared(database.get(), text);
        if (!insert || sqlite3_bind_int64(insert.get(), 1, keys.value()) != SQLITE_OK || !is_through(insert.get())) {
            return fail();
        }
    }
    const statement_handle insert =
        prepared(database.get(), "insert into links.reminders_not_shown(source," + QByteArray(not_shown) +
                                     ") select ?1," + not_shown + " from its_links.reminders_not_shown order by rowid");
    return (bind(insert.get(), 1, source) && is_through(insert.get())) || fail();
}

bool merged_database::add_rows(const QString& result, const QString& links, const QString& source, qint64& rows) {
    const int tables = result_tables().size();
    const QMap<QByteArray, qint64> keys_before = last_keys;
    rows = 0;
    bool done = attach(result, "one", unchanging(result)) && has_same_tables("main", "one", tables) && run("begin") &&
                copy_tables(rows);
    if (done && !links.isEmpty()) {
        done = run("commit") && make_links() && attach(links, "its_links", unchanging(links)) && run("begin") &&
               copy_links(keys_before, source) && run("commit") && run("detach its_links");
    } else {
        done = done && run("commit");
    }
    return done && run("detach one");
}

bool merged_database::add_source(const source_row& row) {
    constexpr int texts = 9;
    const QString values[texts] = {QStringLiteral("Source%1").arg(row.number),
                                   row.id,
                                   row.path,
                                   row.type,
                                   row.sha256,
                                   row.outcome,
                                   row.reason,
                                   row.version,
                                   row.result_sha256};
    const statement_handle insert =
        prepared(database.get(),
                 "insert into sources(source,id,path,type,sha256,outcome,reason,version,result_sha256,number,rows) "
                 "values(?,?,?,?,?,?,?,?,?,?,?)");
    bool done = insert != nullptr;
    for (int i = 0; i < texts; ++i) {
        done = done && bind(insert.get(), i + 1, values[i]);
    }
    done = done && sqlite3_bind_int(insert.get(), texts + 1, row.number) == SQLITE_OK &&
           sqlite3_bind_int64(insert.get(), texts + 2, row.rows) == SQLITE_OK && is_through(insert.get());
    return done || fail();
}

bool merged_database::finish() {
    database.reset();
    return trouble.isEmpty();
}

} // namespace batch
