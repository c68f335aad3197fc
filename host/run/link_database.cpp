// SPDX-License-Identifier: MIT
// A row is traced to its trigger by its place among the profile's rows, where all of them agree with the order in which
// the evidence says that they are written; else by the values that only its trigger can have given it.
#include "host/run/link_database.h"

#include "common/named_connection.h"
#include "host/health/reminder_reader.h"
#include "host/record/links_file.h"
#include "host/run/worker_links.h"

#include <QFile>
#include <QSet>
#include <QSqlError>
#include <QSqlQuery>
#include <QVariant>

#include <functional>

namespace {

const QString connection_name = QStringLiteral("cortana_links");

const char* const create_statements[] = {
    "create table if not exists reminder_links(table_name text not null,INT integer not null,"
    "reminder_link text not null check(reminder_link in('confirmed','contradicted','undecided')),why text,"
    "linked_title text,linked_text text,linked_creation_time integer,linked_last_update_time integer,"
    "linked_last_access_time integer,linked_completion_time integer,primary key(table_name,INT))",
    "create table if not exists reminders_not_shown(system_user text,source_file text,title text,text text,"
    "creation_time integer,last_update_time integer,last_access_time integer,completion_time integer)",
};

constexpr int all_tables = 3; // that hold reminders

// What a row, or a row of the worker's reminders, shows; it begins at that column.
reminder_content content_at(const QSqlQuery& query, int first) {
    const auto number = [&](int column) { return query.value(first + column).toLongLong(); };
    return {
        query.value(first).toString(), query.value(first + 1).toString(), number(2), number(3), number(4), number(5)};
}

const QString content_columns =
    QStringLiteral("title,text,creation_time,last_update_time,last_access_time,completion_time");

struct trigger_row {
    QVariant reminder; // its number in the worker's account; null: undecided
    QString why;
};

class profile_links {
public:
    profile_links(QSqlDatabase& opened, const linked_rows& of_profile, bool with_worker)
        : database(opened), rows(of_profile), has_worker(with_worker), triggers(opened), reminders(opened),
          links(opened) {}

    bool write() {
        const QStringList tables = reminder_tables(rows.tables);
        bool done = true;
        for (const QString& table : tables) {
            done = done && write_table(table);
        }
        // With fewer tables, reminders of the others would seem to be missing.
        return done && (tables.size() < all_tables || !has_worker || write_not_shown());
    }

    link_counts counts;
    QSqlError error;

private:
    bool fails(const QSqlQuery& query) {
        error = query.lastError();
        return false;
    }

    // Each row asks the same: nothing is prepared twice.
    static QSqlQuery& prepared(QSqlQuery& query, const QString& statement) {
        if (query.lastQuery() != statement) {
            query.prepare(statement);
        }
        return query;
    }

    bool open_rows(QSqlQuery& query, const QString& table) const {
        query.setForwardOnly(true);
        query.prepare(QStringLiteral("select INT,%1,%2 from result.%3 where INT>? order by INT")
                          .arg(content_columns, trigger_columns(table).join(QLatin1Char(',')), table));
        query.addBindValue(rows.keys_before.value(table));
        return query.exec();
    }

    static QString digest_at(const QSqlQuery& row, const QString& table) {
        constexpr int first = 7; // behind the key and the content
        QStringList values;
        for (int column = 0; column < trigger_columns(table).size(); ++column) {
            values.append(row.value(first + column).toString());
        }
        return QString::fromLatin1(digest_of(values));
    }

    bool open_written(QSqlQuery& query, const QString& table) const {
        query.setForwardOnly(true);
        query.prepare(QStringLiteral("select w.digest,t.reminder,t.why from worker.written w "
                                     "join worker.triggers t on t.id=w.trigger_row "
                                     "where w.table_name=? order by w.place"));
        query.addBindValue(table);
        return query.exec();
    }

    // All rows agree with the order that the worker tells, one by one to the last.
    bool agrees_with_written(const QString& table) const {
        QSqlQuery row(database);
        QSqlQuery written(database);
        if (!has_worker || !open_rows(row, table) || !open_written(written, table)) {
            return false;
        }
        bool more = row.next();
        bool agrees = written.next() == more;
        while (agrees && more) {
            agrees = digest_at(row, table) == written.value(0).toString();
            more = row.next();
            agrees = agrees && written.next() == more;
        }
        return agrees;
    }

    // The trigger by its values: sure only when all that have them lead to one reminder.
    trigger_row trigger_with(const QString& table, const QString& digest) {
        if (!has_worker) {
            return {{}, QStringLiteral("the ids of the evidence were not read")};
        }
        QSqlQuery& query = prepared(triggers, QStringLiteral("select distinct reminder,why from worker.triggers where "
                                                             "table_name=? and digest=? limit 2"));
        query.addBindValue(table);
        query.addBindValue(digest);
        if (!query.exec() || !query.next()) {
            return {{}, QStringLiteral("no trigger row has these values")};
        }
        const trigger_row found{query.value(0), query.value(1).toString()};
        return query.next() ? trigger_row{{}, QStringLiteral("several trigger rows have these values")} : found;
    }

    bool write_table(const QString& table) {
        QSqlQuery query(database);
        query.prepare(QStringLiteral("delete from main.reminder_links where table_name=? and INT>?"));
        query.addBindValue(table);
        query.addBindValue(rows.keys_before.value(table));
        if (!query.exec()) {
            return fails(query);
        }
        const bool by_place = agrees_with_written(table);
        QSqlQuery row(database);
        QSqlQuery written(database);
        if (!open_rows(row, table) || (by_place && !open_written(written, table))) {
            return fails(row);
        }
        while (row.next()) {
            const bool told = by_place && written.next();
            const trigger_row trigger = told ? trigger_row{written.value(1), written.value(2).toString()}
                                             : trigger_with(table, digest_at(row, table));
            if (!write_link(table, row, trigger)) {
                return false;
            }
        }
        return !row.lastError().isValid() || fails(row);
    }

    bool find_reminder(const QVariant& number) {
        QSqlQuery& query =
            prepared(reminders, QStringLiteral("select %1 from worker.reminders where id=?").arg(content_columns));
        query.addBindValue(number);
        return query.exec() && query.next();
    }

    bool write_link(const QString& table, const QSqlQuery& row, const trigger_row& trigger) {
        const reminder_content shown = content_at(row, 1);
        shown_contents.insert(digest_of(shown.values()));
        const bool is_linked = !trigger.reminder.isNull() && find_reminder(trigger.reminder);
        const reminder_content content = is_linked ? content_at(reminders, 0) : reminder_content();
        const bool same = is_linked && content.values() == shown.values();
        ++(!is_linked ? counts.undecided : same ? counts.confirmed : counts.contradicted);

        QSqlQuery& query =
            prepared(links, QStringLiteral("insert into main.reminder_links values(?,?,?,?,?,?,?,?,?,?)"));
        query.addBindValue(table);
        query.addBindValue(row.value(0));
        query.addBindValue(!is_linked ? QStringLiteral("undecided")
                           : same     ? QStringLiteral("confirmed")
                                      : QStringLiteral("contradicted"));
        query.addBindValue(is_linked ? QVariant(QVariant::String) : QVariant(trigger.why));
        for (int column = 0; column < 6; ++column) {
            query.addBindValue(is_linked ? reminders.value(column) : QVariant());
        }
        return query.exec() || fails(query);
    }

    bool write_not_shown() {
        QSqlQuery reminder(database);
        reminder.setForwardOnly(true);
        if (!reminder.exec(
                QStringLiteral("select %1,system_user,source_file from worker.reminders").arg(content_columns))) {
            return fails(reminder);
        }
        QSqlQuery query(database);
        query.prepare(QStringLiteral("insert into main.reminders_not_shown(%1,system_user,source_file) "
                                     "values(?,?,?,?,?,?,?,?)")
                          .arg(content_columns));
        while (reminder.next()) {
            if (shown_contents.contains(digest_of(content_at(reminder, 0).values()))) {
                continue;
            }
            for (int column = 0; column < 8; ++column) {
                query.addBindValue(reminder.value(column));
            }
            if (!query.exec()) {
                return fails(query);
            }
            ++counts.not_shown;
        }
        return true;
    }

    QSqlDatabase& database;
    const linked_rows& rows;
    bool has_worker;
    QSqlQuery triggers, reminders, links; // of one row
    QSet<QByteArray> shown_contents;
};

bool attach(QSqlDatabase& database, const QString& file, const char* name) {
    QSqlQuery query(database);
    query.prepare(QStringLiteral("attach database ? as ") + QLatin1String(name));
    query.addBindValue(file);
    return query.exec();
}

// What a worker left is looked at for damage before anything is believed.
bool attach_worker(QSqlDatabase& database, const QString& file) {
    if (file.isEmpty() || !QFile::exists(file) || !attach(database, file, "worker")) {
        return false;
    }
    QSqlQuery query(database);
    const bool readable = query.exec(QStringLiteral("pragma worker.quick_check(1)")) && query.next() &&
                          query.value(0).toString() == QLatin1String("ok") &&
                          query.exec(QStringLiteral("select count(*) from worker.sqlite_master where type='table' and "
                                                    "name in('reminders','triggers','written')")) &&
                          query.next();
    return readable && query.value(0).toInt() == 3;
}

// Hands the opened file to work in a transaction; attach what is needed in before.
bool in_transaction(const QString& database_file, QString& error, const std::function<bool(QSqlDatabase&)>& before,
                    const std::function<bool(QSqlDatabase&, QSqlError&)>& work) {
    bool done = false;
    {
        QSqlDatabase database = replace_connection(connection_name, links_file(database_file));
        QSqlError failure;
        done = database.open() && before(database) && database.transaction();
        for (const char* const statement : create_statements) {
            done = done && !database.exec(QLatin1String(statement)).lastError().isValid();
        }
        done = done && work(database, failure) && database.commit();
        if (!done) {
            error = (failure.isValid() ? failure : database.lastError()).text();
            database.rollback();
        }
    }
    QSqlDatabase::removeDatabase(connection_name);
    return done;
}

} // namespace

QVector<const char*> links_schema() {
    return {std::begin(create_statements), std::end(create_statements)};
}

void link_counts::add(const link_counts& other) {
    confirmed += other.confirmed;
    contradicted += other.contradicted;
    undecided += other.undecided;
    not_shown += other.not_shown;
}

bool add_links(const linked_rows& rows, link_counts& counts, QString& error) {
    bool has_worker = false;
    link_counts added;
    const bool done = in_transaction(
        rows.database, error,
        [&](QSqlDatabase& database) {
            database.exec(QStringLiteral("pragma trusted_schema=off"));
            has_worker = attach_worker(database, rows.worker);
            return attach(database, rows.database, "result");
        },
        [&](QSqlDatabase& database, QSqlError& failure) {
            profile_links links(database, rows, has_worker);
            const bool written = links.write();
            failure = links.error;
            added = links.counts;
            return written;
        });
    if (done) {
        counts.add(added);
    }
    return done;
}

bool clear_links(const QString& database_file, const QStringList& tables, QString& error) {
    const QStringList cleared = reminder_tables(tables);
    if (cleared.isEmpty() || !QFile::exists(links_file(database_file))) {
        return true;
    }
    return in_transaction(
        database_file, error, [](QSqlDatabase&) { return true; },
        [&](QSqlDatabase& database, QSqlError& failure) {
            bool done = true;
            QSqlQuery query(database);
            for (const QString& table : cleared) {
                query.prepare(QStringLiteral("delete from reminder_links where table_name=?"));
                query.addBindValue(table);
                done = done && query.exec();
            }
            const bool all = cleared.size() == all_tables;
            done = done && (!all || query.exec(QStringLiteral("delete from reminders_not_shown")));
            failure = query.lastError();
            return done;
        });
}
