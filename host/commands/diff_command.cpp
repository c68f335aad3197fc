// SPDX-License-Identifier: MIT
// One line a table that differs.
#include "host/commands/diff_command.h"

#include "host/console.h"
#include "host/exit_codes.h"
#include "host/exports/run_difference.h"
#include "host/record/read_only_database.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <algorithm>

namespace {

QString differences_text(const QVector<table_difference>& differences) {
    QString text;
    for (const table_difference& one : differences) {
        if (!one.is_none()) {
            text += QStringLiteral("%1  removed %2, added %3, changed %4\n")
                        .arg(one.table.leftJustified(20))
                        .arg(one.removed)
                        .arg(one.added)
                        .arg(one.changed);
        }
    }
    return text.isEmpty() ? QStringLiteral("the same rows\n") : text;
}

QString differences_json(const QVector<table_difference>& differences, int code) {
    QJsonArray tables;
    for (const table_difference& one : differences) {
        tables.append(QJsonObject{{QStringLiteral("table"), one.table},
                                  {QStringLiteral("removed"), one.removed},
                                  {QStringLiteral("added"), one.added},
                                  {QStringLiteral("changed"), one.changed}});
    }
    const QJsonObject document{{QStringLiteral("version"), QStringLiteral(CORTANA_VERSION)},
                               {QStringLiteral("exit_code"), code},
                               {QStringLiteral("equal"), code == exit_complete},
                               {QStringLiteral("tables"), tables}};
    return QString::fromUtf8(QJsonDocument(document).toJson());
}

} // namespace

int run_diff_command(const diff_options& options) {
    QString error;
    const QVector<table_difference> differences =
        difference_of(database_in(options.first), database_in(options.second), options.tables, error);
    if (!error.isEmpty()) {
        say(QStringLiteral("cannot compare the result databases: ") + error);
        return exit_output;
    }
    const bool equal =
        std::all_of(differences.begin(), differences.end(), [](const table_difference& one) { return one.is_none(); });
    const int code = equal ? exit_complete : exit_failures;
    return print(options.json ? differences_json(differences, code) : differences_text(differences)) ? code
                                                                                                     : int(exit_output);
}
