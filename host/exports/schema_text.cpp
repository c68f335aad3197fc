// SPDX-License-Identifier: MIT
// What the plugin leaves to the host is named in one line a table.
#include "host/exports/schema_text.h"

#include "host/exports/table_descriptions.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

namespace {

QJsonObject column_json(const column_description& column) {
    return {{QStringLiteral("name"), QLatin1String(column.name)},
            {QStringLiteral("kind"), QLatin1String(name_of(column.kind))},
            {QStringLiteral("unit"), QLatin1String(column.unit)},
            {QStringLiteral("meaning"), QLatin1String(column.meaning)},
            {QStringLiteral("origin"), QLatin1String(column.origin)}};
}

QByteArray column_markdown(const column_description& column) {
    const QByteArray unit = column.unit[0] == '\0' ? QByteArray() : QByteArray(", ") + column.unit;
    return QByteArray("| `") + column.name + "` | " + name_of(column.kind) + unit + " | " + column.meaning + " | " +
           column.origin + " |\n";
}

QByteArray link_markdown() {
    QByteArray text = "\nExports add, from the links database; the result database does not hold them:\n\n"
                      "| column | kind | meaning | from |\n|---|---|---|---|\n";
    for (const column_description& column : link_columns()) {
        text += column_markdown(column);
    }
    return text;
}

QByteArray table_markdown(const table_description& table) {
    QByteArray text = QByteArray("### ") + table.name + "\n\nA row is " + table.row + ". From " + table.origin +
                      ".\n\n| column | kind | meaning | from |\n|---|---|---|---|\n";
    QByteArray of_host;
    for (const column_description& column : table.columns) {
        if (column.kind == column_kind::host) {
            of_host += (of_host.isEmpty() ? QByteArray("`") : QByteArray(", `")) + column.name + '`';
        } else {
            text += column_markdown(column);
        }
    }
    return text + "\nFor the host: " + of_host + ".\n" + (table.has_reminders() ? link_markdown() : QByteArray());
}

QJsonArray columns_json(const QVector<column_description>& columns) {
    QJsonArray list;
    for (const column_description& column : columns) {
        list.append(column_json(column));
    }
    return list;
}

} // namespace

QByteArray schema_as_json() {
    QJsonArray tables;
    for (const table_description& table : table_descriptions()) {
        QJsonObject described{{QStringLiteral("name"), QLatin1String(table.name)},
                              {QStringLiteral("row"), QLatin1String(table.row)},
                              {QStringLiteral("origin"), QLatin1String(table.origin)},
                              {QStringLiteral("columns"), columns_json(table.columns)}};
        if (table.has_reminders()) {
            described.insert(QStringLiteral("export_columns"), columns_json(link_columns()));
        }
        tables.append(described);
    }
    return QJsonDocument(QJsonObject{{QStringLiteral("tables"), tables}}).toJson();
}

QByteArray schema_as_markdown() {
    QByteArray text;
    for (const table_description& table : table_descriptions()) {
        text += (text.isEmpty() ? "" : "\n") + table_markdown(table);
    }
    return text;
}
