// SPDX-License-Identifier: MIT
// libesedb and hivex are the plugin's; their versions are those that this tree was built with.
#include "host/record/versions.h"

#include "host/record/read_only_database.h"

#include <QSqlQuery>
#include <QVariant>
#include <QtGlobal>

#include <libesedb.h>

namespace {

QString sqlite_version() {
    QString version = QStringLiteral("missing (no Qt driver for it)");
    QString error;
    with_read_only_database(QStringLiteral(":memory:"), error, [&version](QSqlDatabase& database) {
        QSqlQuery query(QStringLiteral("select sqlite_version()"), database);
        version = query.next() ? query.value(0).toString() : version;
        return true;
    });
    return version;
}

} // namespace

QString version_text() {
    return QStringLiteral("cortana %1\nQt %2\nSQLite %3\nlibesedb %4\nhivex %5\n")
        .arg(QLatin1String(CORTANA_VERSION), QLatin1String(qVersion()), sqlite_version(),
             QLatin1String(LIBESEDB_VERSION_STRING), QLatin1String(HIVEX_VERSION));
}
