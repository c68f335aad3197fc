// SPDX-License-Identifier: MIT
// One connection, gone before the call returns.
#include "host/record/read_only_database.h"

#include "contract/result_layout.h"

#include <QFileInfo>
#include <QSqlError>

bool with_read_only_database(const QString& file, QString& error, const std::function<bool(QSqlDatabase&)>& work) {
    const QString connection_name = QStringLiteral("cortana_host");
    bool done = false;
    {
        QSqlDatabase database = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), connection_name);
        database.setDatabaseName(file);
        database.setConnectOptions(QStringLiteral("QSQLITE_OPEN_READONLY"));
        if (database.open()) {
            done = work(database);
        } else {
            error = database.lastError().text();
        }
    }
    QSqlDatabase::removeDatabase(connection_name);
    return done;
}

QString database_in(const QString& result) {
    if (!QFileInfo(result).isDir()) {
        return result;
    }
    return result_layout::database_file(result_layout::plugin_folder(result, artifact_name), artifact_name);
}
