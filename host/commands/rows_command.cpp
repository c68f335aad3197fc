// SPDX-License-Identifier: MIT
// One line a row: its key, then every column that says something.
#include "host/commands/rows_command.h"

#include "host/console.h"
#include "host/exit_codes.h"
#include "host/record/links_file.h"
#include "host/record/read_only_database.h"
#include "host/run/worker_links.h"

#include <QDateTime>
#include <QFile>
#include <QSqlError>
#include <QSqlQuery>
#include <QSqlRecord>
#include <QVariant>

#include <algorithm>

namespace {

// Columns that are the same in every row or repeat another column.
const QStringList left_out = {QStringLiteral("bookmark"), QStringLiteral("INT"), QStringLiteral("os_scheme_display"),
                              QStringLiteral("preview_file_path"), QStringLiteral("export_file_paths")};

// Seconds since 1970 with the date behind them; other values as they are.
QString shown_value(const QString& column, const QVariant& value) {
    const QString text = printable(value.toString());
    const bool is_number = value.type() == QVariant::LongLong || value.type() == QVariant::Int;
    if (!is_number || value.toLongLong() == 0 || !column.contains(QLatin1String("time"))) {
        return text;
    }
    const QDateTime time = QDateTime::fromSecsSinceEpoch(value.toLongLong(), Qt::UTC);
    return QStringLiteral("%1 (%2)").arg(text, time.toString(Qt::ISODate));
}

QString row_line(const QSqlQuery& query, const QSqlRecord& columns) {
    QStringList values;
    for (int i = 0; i < columns.count(); ++i) {
        const QString name = columns.fieldName(i);
        if (!query.isNull(i) && !left_out.contains(name)) {
            values << name + QStringLiteral(": ") + shown_value(name, query.value(i));
        }
    }
    const QString key = query.value(QStringLiteral("INT")).toString();
    return QStringLiteral("%1  %2\n").arg(key.rightJustified(4), values.join(QStringLiteral(" | ")));
}

QString statement_of(const QString& table, bool with_links) {
    return with_links
               ? QStringLiteral("select r.*,l.reminder_link,l.linked_title,l.linked_text from main.%1 r left join "
                                "links.reminder_links l on l.table_name='%1' and l.INT=r.INT order by r.INT")
                     .arg(table)
               : QStringLiteral("select * from %1 order by INT").arg(table);
}

bool attach_links(QSqlDatabase& database, const QString& links, QString& error) {
    QSqlQuery query(database);
    query.prepare(QStringLiteral("attach database ? as links"));
    query.addBindValue(links);
    const bool done = query.exec();
    error = query.lastError().text();
    return done;
}

// False: a row could not be read or printed; error says why when it was the reading.
bool list_table(QSqlDatabase& database, const QString& table, bool has_links, QString& error) {
    QSqlQuery query(database);
    query.setForwardOnly(true);
    if (!query.exec(statement_of(table, has_links && !reminder_tables({table}).isEmpty()))) {
        error = query.lastError().text();
        return false;
    }
    bool printed = print(table + QLatin1Char('\n'));
    const QSqlRecord columns = query.record();
    qint64 rows = 0;
    qint64 contradicted = 0;
    while (printed && query.next()) {
        printed = print(row_line(query, columns));
        contradicted += query.value(columns.count() - 3).toString() == QLatin1String("contradicted") ? 1 : 0;
        ++rows;
    }
    if (query.lastError().isValid()) {
        error = query.lastError().text();
        return false;
    }
    if (printed && contradicted > 0) {
        printed = print(QStringLiteral("      %1 of %2 rows contradicted: by the ids of the evidence their title, text "
                                       "and times are those of another reminder\n")
                            .arg(contradicted)
                            .arg(rows));
    }
    return printed && print(rows == 0 ? QStringLiteral("      no rows\n\n") : QStringLiteral("\n"));
}

} // namespace

int run_rows_command(const rows_options& options) {
    const QString file = database_in(options.result);
    QString error;
    const bool done = with_read_only_database(file, error, [&](QSqlDatabase& database) {
        const bool has_links = QFile::exists(links_file(file));
        return (!has_links || attach_links(database, links_file(file), error)) &&
               std::all_of(options.tables.begin(), options.tables.end(),
                           [&](const QString& table) { return list_table(database, table, has_links, error); });
    });
    if (!error.isEmpty()) {
        say(QStringLiteral("cannot read the result database %1: %2").arg(file, error));
    }
    return done ? exit_complete : exit_output;
}
