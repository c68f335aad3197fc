// SPDX-License-Identifier: MIT
// Words for what the check of an evidence file found.
#include "host/health/file_health.h"

QString text_of(const damaged_page& page) {
    const QString number = QStringLiteral("damaged page %1").arg(page.number);
    if (page.table.isEmpty()) {
        return number + QStringLiteral(": ") + page.reason;
    }
    const QString owner = page.part.isEmpty() ? page.table : page.table + QStringLiteral(", ") + page.part;
    return number + QStringLiteral(" (") + owner + QStringLiteral("): ") + page.reason;
}

const table_health* ese_health::table(const QString& name) const {
    for (const table_health& one : tables) {
        if (one.name == name) {
            return &one;
        }
    }
    return nullptr;
}
