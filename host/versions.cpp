// SPDX-License-Identifier: MIT
// libesedb and hivex are the plugin's; their versions are those that this tree was built with.
#include "host/versions.h"

#include <QSqlDatabase>
#include <QSqlQuery>
#include <QVariant>
#include <QtGlobal>

#include <libesedb.h>

namespace {

QString sqlite_version() {
    const QString name = QStringLiteral("cortana_host_versions");
    QString version = QStringLiteral("missing (no Qt driver for it)");
    {
        QSqlDatabase database = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), name);
        database.setDatabaseName(QStringLiteral(":memory:"));
        if (database.open()) {
            QSqlQuery query(QStringLiteral("select sqlite_version()"), database);
            version = query.next() ? query.value(0).toString() : version;
        }
    }
    QSqlDatabase::removeDatabase(name);
    return version;
}

} // namespace

QString version_text() {
    return QStringLiteral("cortana %1\nQt %2\nSQLite %3\nlibesedb %4\nhivex %5\n")
        .arg(QLatin1String(CORTANA_VERSION), QLatin1String(qVersion()), sqlite_version(),
             QLatin1String(LIBESEDB_VERSION_STRING), QLatin1String(HIVEX_VERSION));
}
