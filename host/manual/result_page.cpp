// SPDX-License-Identifier: MIT
// Files first, then a subsection a table.
#include "host/manual/result_page.h"

#include "host/exports/table_descriptions.h"
#include "host/manual/roff.h"

namespace {

struct result_file {
    const char* path;
    const char* holds;
};

constexpr result_file files[] = {
    {"Artifacts_Result/Cortana/Cortana.sqlite",
     "The result database, SQLite 3. Rows accumulate over runs; cortana extract --clear empties the selected tables "
     "first. Times are seconds since 1970 in UTC, 0 where the evidence holds none. NULL: nothing is said about the "
     "column. Empty text: the value is empty."},
    {"Artifacts_Result/Cortana/run.json",
     "The record of the last run as one JSON document, UTF-8: versions, arguments, host, start and end, each evidence "
     "file with place, size, times, SHA-256 and state, rows by table and profile, lost workers, exit code. "
     "run_record.schema.json in the documentation describes every field; cortana verify recomputes the digests."},
    {"Artifacts_Result/Cortana/Cortana_links.sqlite",
     "What the ids of the evidence say of each reminder row: table reminder_links with table_name and INT of the row, "
     "reminder_link (confirmed, contradicted or undecided), linked_title, linked_text and the linked reminder's times. "
     "A row of the result database pairs trigger and reminder by position, which these ids can contradict."},
    {"Artifacts_Result/Cortana/exports/", "What cortana export wrote, unless --out names another folder."},
    {"cortana_debug.log", "The debug log, text lines; cortana log deciphers one that is enciphered."},
};

QString table_text(const table_description& table) {
    QString text =
        roff_subsection(QString::fromUtf8(table.name)) +
        roff_paragraph(
            QStringLiteral("A row is %1. From %2.").arg(QString::fromUtf8(table.row), QString::fromUtf8(table.origin)));
    for (const column_description& column : table.columns) {
        if (column.kind != column_kind::host) {
            text += roff_item(roff_bold(QString::fromUtf8(column.name)),
                              QStringLiteral("%1 (%2)").arg(QString::fromUtf8(column.meaning),
                                                            QString::fromUtf8(name_of(column.kind))));
        }
    }
    return text;
}

} // namespace

QString result_page() {
    QString text = roff_title(QStringLiteral("cortana-result"), QStringLiteral("5"), QStringLiteral("File Formats"));
    text += roff_section(QStringLiteral("name")) + QStringLiteral("cortana\\-result \\- what cortana extract writes\n");
    text += roff_section(QStringLiteral("description")) +
            roff_text(QStringLiteral("cortana extract SOURCE RESULT leaves these files below the folder RESULT.")) +
            QLatin1Char('\n');
    for (const result_file& file : files) {
        text += roff_item(roff_bold(QString::fromUtf8(file.path)), QString::fromUtf8(file.holds));
    }
    text += roff_section(QStringLiteral("tables of Cortana.sqlite"));
    for (const table_description& table : table_descriptions()) {
        text += table_text(table);
    }
    return text + roff_section(QStringLiteral("see also")) + roff_bold(QStringLiteral("cortana")) +
           QStringLiteral("(1)\n");
}
