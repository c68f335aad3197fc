// SPDX-License-Identifier: MIT
// The names of the result tables, and what somebody who mistyped one may have meant.
#pragma once

#include <QString>
#include <QStringList>

// The nine tables that the plugin fills, in the order in which it fills them.
const QStringList& result_table_names();

// The entry of names (not empty) with the fewest letters to insert, delete or replace; the first of several.
QString nearest_name(const QString& typed, const QStringList& names);
