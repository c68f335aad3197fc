// SPDX-License-Identifier: MIT
// libesedb and hivex are the plugin's, libtsk and libarchive those of the program that stages: their versions are those
// that this tree was built with.
#include "host/record/versions.h"

#include "host/record/read_only_database.h"

#include <QSqlQuery>
#include <QVariant>
#include <QtGlobal>

#include <libesedb.h>
#include <openssl/crypto.h>

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

QJsonObject library_versions() {
    return {{QStringLiteral("libtsk"), QLatin1String(TSK_VERSION)},
            {QStringLiteral("libarchive"), QLatin1String(LIBARCHIVE_VERSION)},
            {QStringLiteral("Qt"), QLatin1String(qVersion())},
            {QStringLiteral("SQLite"), sqlite_version()},
            {QStringLiteral("libesedb"), QLatin1String(LIBESEDB_VERSION_STRING)},
            {QStringLiteral("hivex"), QLatin1String(HIVEX_VERSION)},
            {QStringLiteral("OpenSSL"), QLatin1String(OpenSSL_version(OPENSSL_VERSION_STRING))}};
}

QString version_text() {
    QString text = QStringLiteral("cortana %1\n").arg(QLatin1String(CORTANA_VERSION));
    const QJsonObject libraries = library_versions();
    for (const char* const name : {"Qt", "SQLite", "libesedb", "hivex", "libtsk", "libarchive", "OpenSSL"}) {
        text += QStringLiteral("%1 %2\n").arg(QLatin1String(name), libraries[QLatin1String(name)].toString());
    }
    return text;
}
