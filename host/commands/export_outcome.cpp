// SPDX-License-Identifier: MIT
// Sums for people, every table and format for programs.
#include "host/commands/export_outcome.h"

#include "host/console.h"

#include <QFileInfo>
#include <QJsonArray>

namespace {

void add_up(const QMap<QString, qint64>& numbers, QMap<QString, qint64>& sums) {
    for (auto number = numbers.begin(); number != numbers.end(); ++number) {
        sums[number.key()] += number.value();
    }
}

QString format_text(const QString& format, const QVector<table_account>& accounts) {
    qint64 rows = 0;
    export_counts sum;
    for (const table_account& account : accounts) {
        if (account.format == format) {
            rows += account.rows;
            sum.rows_out += account.counts.rows_out;
            add_up(account.counts.left_out, sum.left_out);
            add_up(account.counts.notes, sum.notes);
        }
    }
    QString text = QStringLiteral("%1  %2 of %3 rows").arg(format.leftJustified(10)).arg(sum.rows_out).arg(rows);
    for (auto note = sum.notes.begin(); note != sum.notes.end(); ++note) {
        text += QStringLiteral("; %1: %2").arg(note.key()).arg(note.value());
    }
    text += QLatin1Char('\n');
    for (auto reason = sum.left_out.begin(); reason != sum.left_out.end(); ++reason) {
        text += QStringLiteral("            left out: %1 (%2)\n").arg(reason.value()).arg(reason.key());
    }
    return text;
}

QJsonObject numbers(const QMap<QString, qint64>& map) {
    QJsonObject object;
    for (auto entry = map.begin(); entry != map.end(); ++entry) {
        object.insert(entry.key(), entry.value());
    }
    return object;
}

} // namespace

QString export_text(const export_request& request, const export_outcome& outcome) {
    QString text;
    for (const QString& format : request.formats) {
        text += format_text(format, outcome.accounts);
    }
    return text + QStringLiteral("written to ") + printable(request.folder) + QLatin1Char('\n');
}

QJsonObject export_object(const export_request& request, const export_outcome& outcome) {
    QJsonArray accounts;
    for (const table_account& account : outcome.accounts) {
        accounts.append(QJsonObject{{QStringLiteral("format"), account.format},
                                    {QStringLiteral("table"), account.table},
                                    {QStringLiteral("rows"), account.rows},
                                    {QStringLiteral("rows_out"), account.counts.rows_out},
                                    {QStringLiteral("left_out"), numbers(account.counts.left_out)},
                                    {QStringLiteral("notes"), numbers(account.counts.notes)}});
    }
    return {{QStringLiteral("database"), request.database},
            {QStringLiteral("folder"), request.folder},
            {QStringLiteral("error"), outcome.error},
            {QStringLiteral("tables"), accounts}};
}

QString export_folder_beside(const QString& database) {
    return QFileInfo(database).path() + QStringLiteral("/exports");
}
