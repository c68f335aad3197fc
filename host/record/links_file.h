// SPDX-License-Identifier: MIT
// Where the links of the reminder rows lie.
#pragma once

#include <QString>

// The links database beside a result database: Cortana_links.sqlite beside Cortana.sqlite.
inline QString links_file(const QString& database) {
    const QString ending = QStringLiteral(".sqlite");
    return (database.endsWith(ending) ? database.chopped(ending.size()) : database) + QStringLiteral("_links.sqlite");
}
