// SPDX-License-Identifier: MIT
// Tables: reminders, triggers (what each links to, told apart by a digest) and written (the order of rows, where it is
// certain: with one database only, since the rows of several are written in a mixture).
#include "host/run/worker_links.h"

#include "common/named_connection.h"
#include "host/health/reminder_reader.h"
#include "host/run/cancellation.h"
#include "source/discovery.h"

#include <QFile>
#include <QSqlQuery>
#include <QVariant>

#include <algorithm>

namespace {

const QString connection_name = QStringLiteral("cortana_worker_links");

struct found_database {
    QString user;
    QString path;
};

QVector<found_database> databases_of(const worker_request& request) {
    QVector<found_database> found;
    for (const system_account& account : request.accounts) {
        QStringList users{account.system_user, account.domain_user};
        users.removeAll(QString());
        users.removeDuplicates();
        find_sources(request.source_root, users, false, [&](source_list list, const QString& path) {
            if (list == source_list::cortana_core_db) {
                found.append({account.system_user, path});
            }
        });
    }
    return found;
}

class links_writer {
public:
    explicit links_writer(QSqlDatabase& database) : reminder(database), trigger(database), order(database) {
        QSqlQuery query(database);
        const char* const statements[] = {
            "create table reminders(id integer primary key,system_user text,source_file text,title text,text text,"
            "creation_time integer,last_update_time integer,last_access_time integer,completion_time integer)",
            "create table triggers(id integer primary key,table_name text,digest text,reminder integer,why text)",
            "create index by_digest on triggers(table_name,digest)",
            "create table written(table_name text,place integer,digest text,trigger_row integer,"
            "primary key(table_name,place))",
        };
        for (const char* const statement : statements) {
            done = done && query.exec(QLatin1String(statement));
        }
        done = done && reminder.prepare(QStringLiteral("insert into reminders values(null,?,?,?,?,?,?,?,?)")) &&
               trigger.prepare(QStringLiteral("insert into triggers values(null,?,?,?,?)")) &&
               order.prepare(QStringLiteral("insert into written values(?,?,?,?)"));
    }

    bool write(const found_database& found, const QString& source_file, const core_links& links, bool with_order) {
        const qint64 reminders_before = reminder_count;
        for (const reminder_content& one : links.reminders) {
            insert(reminder, {found.user, source_file, one.title, one.text, one.created, one.updated, one.accessed,
                              one.completed});
            ++reminder_count;
        }
        for (const trigger_table_links& table : links.tables) {
            write_table(table, reminders_before, with_order);
        }
        return done;
    }

private:
    void insert(QSqlQuery& query, const QVariantList& values) {
        for (const QVariant& value : values) {
            query.addBindValue(value);
        }
        done = done && query.exec();
    }

    void write_table(const trigger_table_links& table, qint64 reminders_before, bool with_order) {
        const qint64 triggers_before = trigger_count;
        for (int row = 0; row < table.links.size(); ++row) {
            const reminder_link& link = table.links[row];
            const QVariant linked =
                link.reminder < 0 ? QVariant(QVariant::LongLong) : QVariant(reminders_before + link.reminder + 1);
            insert(trigger, {table.table, QString::fromLatin1(table.digests[row]), linked, QLatin1String(link.why)});
            ++trigger_count;
        }
        for (int place = 0; with_order && place < table.written_order.size(); ++place) {
            const int row = table.written_order[place];
            insert(order, {table.table, place, QString::fromLatin1(table.digests[row]), triggers_before + row + 1});
        }
    }

    QSqlQuery reminder;
    QSqlQuery trigger;
    QSqlQuery order;
    qint64 reminder_count = 0;
    qint64 trigger_count = 0;
    bool done = true;
};

bool write_all(const worker_request& request, QSqlDatabase& database) {
    const QVector<found_database> found = databases_of(request);
    links_writer writer(database);
    return std::all_of(found.begin(), found.end(), [&](const found_database& one) {
        const QString source_file = one.path.mid(request.source_root.size() - 1);
        return writer.write(one, source_file, read_core_links(one.path, is_cancelled), found.size() == 1) &&
               !is_cancelled();
    });
}

} // namespace

QStringList reminder_tables(const QStringList& tables) {
    QStringList list;
    for (const QString& table : tables) {
        list << (trigger_columns(table).isEmpty() ? QStringList() : QStringList(table));
    }
    return list;
}

bool write_worker_links(const worker_request& request) {
    const QString file = worker_links(request.folder);
    bool done = false;
    {
        QSqlDatabase database = replace_connection(connection_name, file);
        done = database.open() && database.transaction() && write_all(request, database) && database.commit();
    }
    QSqlDatabase::removeDatabase(connection_name);
    if (!done) {
        QFile::remove(file);
    }
    return done;
}
