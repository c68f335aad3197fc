// SPDX-License-Identifier: MIT
#include "host/run/program_files.h"

#include <QCoreApplication>
#include <QFileInfo>

QString program_file(const QString& name) {
    const QString folder = QCoreApplication::applicationDirPath();
    const QString beside = folder + QLatin1Char('/') + name;
    return QFileInfo::exists(beside) ? beside : folder + QStringLiteral("/../lib/cortana/") + name;
}
