// SPDX-License-Identifier: MIT
// Implementation of the extractors' connection and transaction.
#include "result_db/insert_session.h"

#include "common/named_connection.h"

#include <QSqlError>

insert_session::insert_session(const QString& database_path, const QString& connection_name)
    : name(connection_name), database(replace_connection(name, database_path)) {
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
    const bool done = prepare(statement, values.size()) && execute(values);
    if (!done) {
        error = query->lastError().text();
        prepared.clear();
    }
    return done;
}

// What is prepared already was executed with success in this transaction, so no table can have changed since.
bool insert_session::prepare(const QString& statement, int values) {
    if (statement == prepared && values == bound) {
        return true;
    }
    prepared = statement;
    bound = values; // a query takes what a row lacks from the row before
    const bool done = query->prepare(statement);
    executed = query->executedQuery(); // now: after an insert that succeeds it tells another text
    return done;
}

bool insert_session::execute(const QVector<QVariant>& values) {
    for (const QVariant& value : values) {
        query->addBindValue(value);
    }
    return query->exec();
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
