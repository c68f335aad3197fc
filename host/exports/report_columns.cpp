// SPDX-License-Identifier: MIT
// The rule works on the kinds of the columns, so that a table needs no words of its own here.
#include "host/exports/report_columns.h"

#include "host/exports/html_text.h"

namespace {

bool has_own_column(column_kind kind) {
    return kind == column_kind::size || kind == column_kind::count || kind == column_kind::distance ||
           kind == column_kind::flag;
}

report_column told_column(const export_table& table, const char* name) {
    report_column column{report_part::value, table.index_of(name), -1, {}};
    column.linked = table.index_of(QByteArray("linked_").append(name).constData());
    return column;
}

report_column time_column(const export_table& table, int index) {
    report_column column{report_part::time, index, -1, {}};
    const std::string linked = std::string("linked_") + table.columns[index].name;
    for (const char* const name : table.beside) {
        if (linked == name) {
            column.beside = linked;
        }
    }
    return column;
}

} // namespace

QVector<report_column> report_columns(const export_table& table) {
    QVector<report_column> columns{{report_part::key, table.index_of("INT"), -1, {}}};
    if (table.index_of("reminder_link") >= 0) {
        columns.append({report_part::link, table.index_of("reminder_link"), -1, {}});
    }
    for (const char* const name : table.told_by) {
        columns.append(told_column(table, name));
    }
    if (table.index_of("latitude") >= 0) {
        columns.append({report_part::coordinates, table.index_of("latitude"), -1, {}});
    }
    for (const bool times : {true, false}) {
        for (int i = 0; i < table.columns.size(); ++i) {
            const column_kind kind = table.columns[i].kind;
            if (times && kind == column_kind::time) {
                columns.append(time_column(table, i));
            } else if (!times && has_own_column(kind)) {
                columns.append({report_part::value, i, -1, {}});
            }
        }
    }
    columns.append({report_part::user, table.index_of("system_user"), -1, {}});
    columns.append({report_part::further, -1, -1, {}});
    return columns;
}

std::string title_of(const QByteArray& table) {
    return QByteArray(table).replace('_', ' ').toStdString();
}

std::string heading_of(const report_column& column, const export_table& table) {
    switch (column.part) {
    case report_part::key:
        return "row";
    case report_part::link:
        return "by the ids";
    case report_part::coordinates:
        return "latitude, longitude";
    case report_part::user:
        return "user, origin";
    case report_part::further:
        return "further values";
    default:
        return title_of(table.columns[column.index].name);
    }
}

const char* width_of(const report_column& column, const export_table& table) {
    switch (column.part) {
    case report_part::key:
        return "k";
    case report_part::user:
        return "u";
    case report_part::link:
        return "l";
    case report_part::time:
        return "t";
    case report_part::coordinates:
        return "c";
    case report_part::further:
        return "f";
    default:
        return has_own_column(table.columns[column.index].kind) ? "n" : "v";
    }
}

const QVector<QByteArray>& origin_columns() {
    static const QVector<QByteArray> names{"system_user", "domain_user", "source_count_name", "os_scheme_display",
                                           "source_file"};
    return names;
}
