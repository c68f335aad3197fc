// SPDX-License-Identifier: MIT
// Times of files as the run record and a batch's record hold them.
#pragma once

#include <QDateTime>
#include <QString>

// "2019-05-01T12:00:00.123456700Z". seconds since 1970, UTC; nanoseconds below 1,000,000,000.
inline QString utc_text(qint64 seconds, qint64 nanoseconds) {
    return QDateTime::fromSecsSinceEpoch(seconds, Qt::UTC).toString(QStringLiteral("yyyy-MM-ddThh:mm:ss")) +
           QStringLiteral(".%1Z").arg(nanoseconds, 9, 10, QLatin1Char('0'));
}
