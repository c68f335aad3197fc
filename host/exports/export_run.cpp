// SPDX-License-Identifier: MIT
// The database is looked at before the folder is made: one that cannot be read leaves no trace.
#include "host/exports/export_run.h"

#include "host/exports/formats.h"
#include "host/exports/table_reader.h"
#include "host/exports/whole_files.h"

#include <algorithm>

namespace {

struct chosen_format {
    QString name;
    std::unique_ptr<export_writer> writer;
};

class export_work {
public:
    export_work(const export_request& asked, table_reader& reader, export_folder& folder,
                const std::function<bool()>& asked_to_stop)
        : request(asked), source(reader), target(folder), cancelled(asked_to_stop) {
        for (const QString& name : request.formats) {
            formats.push_back({name, make_writer(name, {target, source, request.database, request.exact})});
        }
    }

    // False: an output failed, the database did, or it was cancelled.
    bool write_table(const export_table& table, QVector<table_account>& accounts) {
        qint64 rows = 0;
        const bool done = all([&](export_writer& writer) { return writer.begin(table); }) &&
                          source.read(table, request.zone, [&](const export_row& row) { return take(row, ++rows); }) &&
                          all([](export_writer& writer) { return writer.end(); });
        for (const chosen_format& format : formats) {
            accounts.append({format.name, QString::fromLatin1(table.name), rows, format.writer->counts()});
        }
        return done;
    }

    bool finish() {
        return all([](export_writer& writer) { return writer.finish(); }) && target.put_all_in_place();
    }

private:
    template <class Action>
    bool all(const Action& action) {
        return std::all_of(formats.begin(), formats.end(),
                           [&](chosen_format& format) { return action(*format.writer); });
    }

    bool take(const export_row& row, qint64 number) {
        constexpr qint64 rows_between_looks = 256;
        return (number % rows_between_looks != 0 || !cancelled()) &&
               all([&](export_writer& writer) { return writer.row(row); });
    }

    const export_request& request;
    table_reader& source;
    export_folder& target;
    const std::function<bool()>& cancelled;
    std::vector<chosen_format> formats;
};

QVector<export_table> wanted_tables(const export_request& request, bool with_links) {
    QVector<export_table> tables;
    for (const table_description& table : table_descriptions()) {
        if (request.tables.contains(QLatin1String(table.name))) {
            tables.append(described_export(table, request.zone.isValid()));
            if (with_links) {
                add_link_columns(tables.last());
            }
        }
    }
    return tables;
}

QString reading_trouble(const export_request& request, const table_reader& source) {
    return source.error().isEmpty()
               ? QString()
               : QStringLiteral("cannot read the result database %1: %2").arg(request.database, source.error());
}

} // namespace

export_outcome run_export(const export_request& request, const std::function<bool()>& cancelled) {
    export_outcome outcome;
    table_reader source(request.database);
    const QVector<export_table> tables = wanted_tables(request, source.has_links());
    if (!std::all_of(tables.begin(), tables.end(), [&](const export_table& table) { return source.has(table); })) {
        outcome.error = reading_trouble(request, source);
        return outcome;
    }
    export_folder target(request.folder, request.folder_is_named);
    export_work work(request, source, target, cancelled);
    bool done = !target.failed();
    for (const export_table& table : tables) {
        done = done && !cancelled() && work.write_table(table, outcome.accounts);
    }
    outcome.cancelled = !done && cancelled();
    if (done && work.finish()) {
        return outcome;
    }
    outcome.error = reading_trouble(request, source);
    if (outcome.error.isEmpty()) {
        outcome.error =
            target.failed() ? QStringLiteral("cannot write ") + target.error() : QStringLiteral("cancelled");
    }
    return outcome;
}
