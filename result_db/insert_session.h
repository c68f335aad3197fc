// SPDX-License-Identifier: MIT
// One extractor's way into the result database: a named "QSQLITE" connection of its own and one transaction, both
// ended on every way out.
#pragma once

#include <QSqlDatabase>
#include <QSqlQuery>
#include <QString>
#include <QVariant>
#include <QVector>

#include <memory>

class insert_session {
public:
    // Removes any connection of that name, opens database_path under it and begins a transaction.
    insert_session(const QString& database_path, const QString& connection_name);
    // Commits (unless done), closes and removes the connection.
    ~insert_session();
    insert_session(const insert_session&) = delete;
    insert_session& operator=(const insert_session&) = delete;

    bool is_open() const { return database.isOpen(); }
    // The driver's text of the last failed open, insert or commit.
    QString error_text() const { return error; }
    // The result database as the connection names it.
    QString database_name() const { return database.databaseName(); }
    // The text of the last failed insert or commit, as the query tells it.
    QString executed_query() const { return executed; }

    // Binds values to the statement in order and executes it; it is prepared anew when it is another one than before
    // and after a failure. False: nothing was written, see error_text().
    bool insert(const QString& statement, const QVector<QVariant>& values);
    // Commits the transaction. False: the rows are not in the database, see error_text().
    bool commit();

private:
    bool prepare(const QString& statement, int values);
    bool execute(const QVector<QVariant>& values);

    QString name;
    QSqlDatabase database;
    std::unique_ptr<QSqlQuery> query;
    QString prepared; // the statement that can be executed again, as it was given
    int bound = 0;    // to so many values
    QString error;
    QString executed; // the last statement, as the query tells it: with a name for each placeholder
    bool in_transaction = false;
};
