// SPDX-License-Identifier: MIT
// The build tells where the parts are installed.
#include "host/run/program_files.h"

#include <QCoreApplication>
#include <QFileInfo>

QString program_file(const QString& name) {
    const QString folder = QCoreApplication::applicationDirPath();
    const QString beside = folder + QLatin1Char('/') + name;
    return QFileInfo::exists(beside) ? beside : folder + QStringLiteral("/" INSTALLED_PARTS "/") + name;
}
