// SPDX-License-Identifier: MIT
// What somebody who mistyped a name may have meant.
#pragma once

#include <QString>
#include <QStringList>

// The entry of names (not empty) with the fewest letters to insert, delete or replace; the first of several.
QString nearest_name(const QString& typed, const QStringList& names);
