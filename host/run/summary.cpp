// SPDX-License-Identifier: MIT
// Tables go down, profiles across, a few columns at a time.
#include "host/run/summary.h"

#include "host/console.h"
#include "host/exit_codes.h"

#include <QJsonArray>

#include <algorithm>

namespace {

constexpr int widest_name = 20;
constexpr int columns_at_once = 4;
const QString all_name = QStringLiteral("all");

// The chosen profiles, then other users that rows were written for (a folder found under an account's domain name).
QStringList users_of(const run_summary& summary) {
    QStringList users = summary.profiles;
    for (const auto& rows : summary.rows) {
        for (const QString& user : rows.keys()) {
            users.append(user);
        }
    }
    users.removeDuplicates();
    return users;
}

qint64 rows_of(const run_summary& summary, const QString& table, const QStringList& users) {
    const auto rows = summary.rows.value(table);
    qint64 sum = 0;
    for (const QString& user : users) {
        sum += rows.value(user);
    }
    return sum;
}

// A column of the table: its heading and the users that it adds up.
struct column {
    QString heading;
    QStringList users;
};

QVector<column> columns_of(const run_summary& summary) {
    const QStringList users = users_of(summary);
    QVector<column> columns;
    for (const QString& user : users) {
        const QString shown = printable(user);
        columns.append(
            {shown.size() > widest_name ? shown.left(widest_name - 3) + QStringLiteral("...") : shown, {user}});
    }
    if (users.size() > 1) {
        columns.append({all_name, users});
    }
    return columns;
}

QString row_text(const QString& name, const QVector<column>& columns, const QStringList& cells) {
    QString text = name.leftJustified(widest_name);
    for (int i = 0; i < columns.size(); ++i) {
        text += QStringLiteral("  ") + cells[i].rightJustified(std::max(columns[i].heading.size(), 8));
    }
    return text + QLatin1Char('\n');
}

QString table_part(const run_summary& summary, const QVector<column>& columns) {
    QStringList headings;
    QStringList sums;
    for (const column& one : columns) {
        qint64 sum = 0;
        for (const QString& table : summary.tables) {
            sum += rows_of(summary, table, one.users);
        }
        headings.append(one.heading);
        sums.append(QString::number(sum));
    }
    QString text = row_text(QStringLiteral("rows added"), columns, headings);
    for (const QString& table : summary.tables) {
        QStringList cells;
        for (const column& one : columns) {
            cells.append(QString::number(rows_of(summary, table, one.users)));
        }
        text += row_text(table, columns, cells);
    }
    return text + row_text(all_name, columns, sums) + QLatin1Char('\n');
}

QString counted(qint64 count, const char* one, const char* many) {
    return QStringLiteral("%1 %2").arg(count).arg(QLatin1String(count == 1 ? one : many));
}

QJsonArray json_findings(const QVector<finding>& findings) {
    QJsonArray list;
    for (const finding& one : findings) {
        list.append(QJsonObject{{QStringLiteral("path"), one.path}, {QStringLiteral("reason"), one.reason}});
    }
    return list;
}

QJsonArray json_rows(const run_summary& summary) {
    QJsonArray list;
    const QStringList users = users_of(summary);
    for (const QString& table : summary.tables) {
        for (const QString& user : users) {
            list.append(QJsonObject{{QStringLiteral("table"), table},
                                    {QStringLiteral("system_user"), user},
                                    {QStringLiteral("rows"), rows_of(summary, table, {user})}});
        }
    }
    return list;
}

QJsonArray json_losses(const run_summary& summary) {
    QJsonArray list;
    for (const step_loss& loss : summary.losses) {
        list.append(QJsonObject{{QStringLiteral("profile"), loss.profile},
                                {QStringLiteral("table"), loss.table},
                                {QStringLiteral("file"), loss.file},
                                {QStringLiteral("reason"), loss.reason}});
    }
    return list;
}

QJsonObject json_links(const link_counts& links) {
    return {{QStringLiteral("confirmed"), links.confirmed},
            {QStringLiteral("contradicted"), links.contradicted},
            {QStringLiteral("undecided"), links.undecided},
            {QStringLiteral("reminders_not_shown"), links.not_shown}};
}

QString links_line(const link_counts& links) {
    QString text = QStringLiteral("reminders        %1 confirmed, %2 contradicted, %3 undecided by their ids")
                       .arg(links.confirmed)
                       .arg(links.contradicted)
                       .arg(links.undecided);
    if (links.contradicted > 0) {
        text += QStringLiteral("\n                 contradicted: title, text and times are those of another reminder");
    }
    if (links.not_shown > 0) {
        text +=
            QStringLiteral("\n                 %1 in no row").arg(counted(links.not_shown, "reminder", "reminders"));
    }
    return text + QLatin1Char('\n');
}

QString outcome_name(int code) {
    switch (code) {
    case exit_complete:
        return QStringLiteral("complete");
    case exit_failures:
        return QStringLiteral("finished with failures");
    case exit_nothing_found:
        return QStringLiteral("nothing found");
    case exit_internal:
        return QStringLiteral("internal fault");
    case exit_output:
        return QStringLiteral("output cannot be written");
    default:
        return QStringLiteral("cancelled");
    }
}

} // namespace

void run_summary::add_trouble(const QString& trouble) {
    if (!output_troubles.contains(trouble)) {
        output_troubles.append(trouble);
    }
}

qint64 run_summary::row_count() const {
    qint64 sum = 0;
    for (const auto& table : rows) {
        for (const qint64 count : table) {
            sum += count;
        }
    }
    return sum;
}

int exit_code_of(const run_summary& summary) {
    if (!summary.fault.isEmpty()) {
        return exit_internal;
    }
    if (!summary.output_troubles.isEmpty()) {
        return exit_output;
    }
    if (summary.signal != 0) {
        return 128 + summary.signal;
    }
    if (std::any_of(summary.losses.begin(), summary.losses.end(), [](const step_loss& loss) { return !loss.began; })) {
        return exit_internal;
    }
    if (summary.log.failures > 0 || summary.health.problem_count > 0 || !summary.losses.isEmpty()) {
        return exit_failures;
    }
    return summary.log.found_sources.isEmpty() ? exit_nothing_found : exit_complete;
}

QString summary_table(const run_summary& summary) {
    const QVector<column> columns = columns_of(summary);
    QString text;
    for (int first = 0; first < columns.size(); first += columns_at_once) {
        text += table_part(summary, columns.mid(first, columns_at_once));
    }
    text += QStringLiteral("%1 in %2 s: %3\n")
                .arg(counted(summary.row_count(), "row", "rows"))
                .arg(static_cast<double>(summary.milliseconds) / 1000, 0, 'f', 1)
                .arg(outcome_name(exit_code_of(summary)));
    text += QStringLiteral("result database  %1\n").arg(printable(summary.output.database));
    text += QStringLiteral("debug log        %1 (%2)\n")
                .arg(printable(summary.output.log), counted(summary.log.failures, "failure", "failures"));
    if (summary.links.rows() > 0) {
        text += links_line(summary.links);
    }
    if (!summary.staged_copies.isEmpty()) {
        text += QStringLiteral("staged copies    %1\n").arg(printable(summary.staged_copies));
    }
    if (!summary.losses.isEmpty()) {
        text += QStringLiteral("not finished     %1\n").arg(counted(summary.losses.size(), "step", "steps"));
    }
    if (summary.health.problem_count > 0) {
        text += QStringLiteral("could not read   %1\n").arg(counted(summary.health.problem_count, "path", "paths"));
    }
    return text;
}

QJsonObject summary_object(const run_summary& summary) {
    const int code = exit_code_of(summary);
    return {
        {QStringLiteral("version"), QLatin1String(CORTANA_VERSION)},
        {QStringLiteral("outcome"), outcome_name(code)},
        {QStringLiteral("exit_code"), code},
        {QStringLiteral("source"), summary.source},
        {QStringLiteral("database"), summary.output.database},
        {QStringLiteral("debug_log"), summary.output.log},
        {QStringLiteral("seconds"), static_cast<double>(summary.milliseconds) / 1000},
        {QStringLiteral("runs"),
         summary.all_profiles ? QStringLiteral("all profiles at once") : QStringLiteral("one for each profile")},
        {QStringLiteral("profiles"), QJsonArray::fromStringList(summary.profiles)},
        {QStringLiteral("not_examined"), QJsonArray::fromStringList(summary.not_examined)},
        {QStringLiteral("tables"), QJsonArray::fromStringList(summary.tables)},
        {QStringLiteral("rows_added"), summary.row_count()},
        {QStringLiteral("rows"), json_rows(summary)},
        {QStringLiteral("sources_found"), QJsonArray::fromStringList(summary.log.found_sources)},
        {QStringLiteral("failures"), summary.log.failures},
        {QStringLiteral("first_failures"), QJsonArray::fromStringList(summary.log.first_failures)},
        {QStringLiteral("losses"), json_losses(summary)},
        {QStringLiteral("reminder_links"), json_links(summary.links)},
        {QStringLiteral("could_not_read"), summary.health.problem_count},
        {QStringLiteral("problems"), json_findings(summary.health.problems)},
        {QStringLiteral("note_count"), summary.health.note_count},
        {QStringLiteral("notes"), json_findings(summary.health.notes)},
        {QStringLiteral("staged_copies"),
         summary.staged_copies.isEmpty() ? QJsonValue() : QJsonValue(summary.staged_copies)},
        {QStringLiteral("output_troubles"), QJsonArray::fromStringList(summary.output_troubles)},
    };
}
