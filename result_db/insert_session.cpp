// SPDX-License-Identifier: MIT
// Implementation of the extractors' connection and transaction.
#include "result_db/insert_session.h"

#include "common/named_connection.h"

#include <QSqlError>
#include <QSqlResult>

namespace {

// The side of a QSqlResult that Qt shows to drivers. QSqlQuery's own prepare and addBindValue end there, after work
// that costs as much as reading the row from the evidence: the one gives every placeholder a name, letter by letter
// and for each row again, the other files every value under such a name. SQLite needs no names.
class driver_side : public QSqlResult {
public:
    static bool prepare_as_given(QSqlResult& result, const QString& statement) {
        return (result.*&driver_side::prepare)(statement);
    }
    static void bind(const QSqlResult& result, const QVector<QVariant>& values) {
        (result.*&driver_side::boundValues)() = values;
    }
};

} // namespace

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
    bool done = prepare(statement);
    if (done) {
        driver_side::bind(*query->result(), values);
        done = query->exec();
    }
    if (!done) {
        error = query->lastError().text();
        executed = told;
    }
    return done;
}

bool insert_session::prepare(const QString& statement) {
    if (statement != prepared) {
        prepared = statement;
        const bool done = query->prepare(statement);
        told = query->executedQuery(); // now: after an insert that succeeds it tells another text
        return done;
    }
    // The result is the query's own; Qt hands it out const because only drivers are meant to use it.
    return driver_side::prepare_as_given(const_cast<QSqlResult&>(*query->result()), statement);
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
