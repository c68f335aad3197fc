// SPDX-License-Identifier: MIT
// One line a format, and one for every reason why it lacks rows.
#include "host/commands/export_command.h"

#include "host/console.h"
#include "host/exit_codes.h"
#include "host/exports/export_run.h"
#include "host/record/read_only_database.h"
#include "host/run/cancellation.h"

#include <QFileInfo>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <algorithm>

namespace {

export_request request_of(const export_options& options) {
    export_request request;
    request.database = database_in(options.result);
    request.folder =
        options.folder.isEmpty() ? QFileInfo(request.database).path() + QStringLiteral("/exports") : options.folder;
    request.folder_is_named = !options.folder.isEmpty();
    request.formats = options.formats;
    request.tables = options.tables;
    request.zone = options.zone;
    request.exact = options.exact;
    return request;
}

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

QString outcome_text(const export_request& request, const export_outcome& outcome) {
    QString text;
    for (const QString& format : request.formats) {
        text += format_text(format, outcome.accounts);
    }
    return text + QStringLiteral("written to ") + printable(request.folder) + QLatin1Char('\n');
}

QJsonObject numbers(const QMap<QString, qint64>& map) {
    QJsonObject object;
    for (auto entry = map.begin(); entry != map.end(); ++entry) {
        object.insert(entry.key(), entry.value());
    }
    return object;
}

QString outcome_json(const export_request& request, const export_outcome& outcome, int code) {
    QJsonArray accounts;
    for (const table_account& account : outcome.accounts) {
        accounts.append(QJsonObject{{QStringLiteral("format"), account.format},
                                    {QStringLiteral("table"), account.table},
                                    {QStringLiteral("rows"), account.rows},
                                    {QStringLiteral("rows_out"), account.counts.rows_out},
                                    {QStringLiteral("left_out"), numbers(account.counts.left_out)},
                                    {QStringLiteral("notes"), numbers(account.counts.notes)}});
    }
    const QJsonObject document{{QStringLiteral("version"), QStringLiteral(CORTANA_VERSION)},
                               {QStringLiteral("exit_code"), code},
                               {QStringLiteral("database"), request.database},
                               {QStringLiteral("folder"), request.folder},
                               {QStringLiteral("error"), outcome.error},
                               {QStringLiteral("tables"), accounts}};
    return QString::fromUtf8(QJsonDocument(document).toJson());
}

} // namespace

int run_export_command(const export_options& options) {
    const export_request request = request_of(options);
    const export_outcome outcome = run_export(request, is_cancelled);
    const bool done = outcome.error.isEmpty();
    const int code = done ? exit_complete : outcome.cancelled ? 128 + cancel_signal() : int(exit_output);
    if (!done) {
        say(outcome.error);
    }
    const bool told =
        options.json ? print(outcome_json(request, outcome, code)) : !done || print(outcome_text(request, outcome));
    if (!told) {
        say(QStringLiteral("standard output cannot be written"));
    }
    return told ? code : int(exit_output);
}
