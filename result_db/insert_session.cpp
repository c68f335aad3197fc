// SPDX-License-Identifier: MIT
// Implementation of the extractors' connection and transaction.
#include "result_db/insert_session.h"

#include <QSqlError>

insert_session::insert_session(const QString& database_path, const QString& connection_name) : name(connection_name) {
    if (QSqlDatabase::contains(name)) {
        QSqlDatabase::removeDatabase(name);
    }
    database = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), name);
    database.setDatabaseName(database_path);
    if (!database.open()) {
        error = database.lastError().text();
        return;
    }
    in_transaction = database.transaction();
    query = std::make_unique<QSqlQuery>(database);
}

insert_session::~insert_session() {
    commit();
    query.reset();
    database.close();
    database = QSqlDatabase();
    QSqlDatabase::removeDatabase(name);
}

bool insert_session::insert(const QString& statement, const QVector<QVariant>& values) {
    bool done = query->prepare(statement);
    if (done) {
        for (const QVariant& value : values) {
            query->addBindValue(value);
        }
        done = query->exec();
    }
    executed = query->executedQuery();
    if (!done) {
        error = query->lastError().text();
    }
    return done;
}

bool insert_session::commit() {
    if (!in_transaction) {
        return true;
    }
    in_transaction = false;
    query->finish(); // an unfinished statement would keep the transaction open
    if (database.commit()) {
        return true;
    }
    error = database.lastError().text();
    executed = QStringLiteral("COMMIT");
    return false;
}
