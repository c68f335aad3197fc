// SPDX-License-Identifier: MIT
// What the program and the libraries it works with are.
#pragma once

#include <QJsonObject>
#include <QString>

// Library -> version. Needs the application object, as the next one does.
QJsonObject library_versions();

// One line each, the program first.
QString version_text();
