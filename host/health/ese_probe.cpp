// SPDX-License-Identifier: MIT
// One open for all tables of a file.
#include "host/health/ese_probe.h"

#include "ese/ese_handles.h"
#include "host/health/ese_walk.h"

namespace {

// The tables of CortanaCoreDb.dat that a result table needs besides those that all reminders need.
struct core_table {
    const char* result_table;
    const char* name;
};
constexpr core_table core_tables[] = {{"time_reminders", "TimeTriggers"},
                                      {"place_reminders", "LocationTriggers"},
                                      {"contact_triggers", "ContactTriggers"}};

// Of the web cache; without a number behind it no container.
const QString container_prefix = QStringLiteral("Container_");

bool is_web_cache(const QString& path) {
    return path.endsWith(QLatin1String("/WebCacheV01.dat"));
}

bool is_container(const QString& table) {
    bool is_number = false;
    table.mid(container_prefix.size()).toUInt(&is_number);
    return is_number && table.startsWith(container_prefix);
}

QStringList wanted_tables(const evidence_record& record, const QStringList& selected) {
    QStringList wanted;
    if (is_web_cache(record.path)) {
        wanted << QStringLiteral("Containers");
        for (const table_health& table : record.health.ese->tables) {
            wanted << (is_container(table.name) ? QStringList(table.name) : QStringList());
        }
        return wanted;
    }
    for (const core_table& table : core_tables) {
        if (selected.contains(QLatin1String(table.result_table))) {
            wanted << QLatin1String(table.name);
        }
    }
    if (!wanted.isEmpty()) {
        wanted = QStringList{QStringLiteral("Triggers"), QStringLiteral("Reminders")} + wanted;
    }
    return wanted;
}

QString rows_of(qint64 rows, const QString& table) {
    return QStringLiteral("%1 rows of %2").arg(rows).arg(table);
}

// Tells what of one open database libesedb refuses.
class probe {
public:
    probe(const evidence_record& of, libesedb_file_t* opened, const std::function<bool()>& is_cancelled,
          health_report& to)
        : record(of), file(opened), cancelled(is_cancelled), report(to) {}

    void look_at(const QString& name) {
        const table_health* const known = record.health.ese->table(name);
        const ese::table_handle table = ese::find_table(file, name.toUtf8());
        int rows = 0;
        if (!table) {
            tell_missing(name, known);
        } else if (libesedb_table_get_number_of_records(table.get(), &rows, nullptr) != ese::success) {
            tell(QStringLiteral("libesedb cannot count the rows of %1; none of them can be read").arg(name) +
                 (known == nullptr ? QString() : QStringLiteral(" (there are %1)").arg(known->rows)));
        } else if (known != nullptr) {
            compare(table.get(), rows, *known);
        }
    }

private:
    void tell(const QString& reason) const { report.add_problem(record.path, reason); }

    void tell_missing(const QString& name, const table_health* known) const {
        if (known != nullptr) {
            tell(QStringLiteral("libesedb does not find the table %1 (%2 rows)").arg(name).arg(known->rows));
        } else if (record.health.ese->are_tables_known) {
            report.add_note(record.path, QStringLiteral("the ESE database has no table %1").arg(name));
        }
    }

    // Values that do not decode show in no other way, so small tables are asked for all rows without a cause.
    bool may_walk_anyway(int rows) {
        const bool may = rows <= rows_to_spare;
        rows_to_spare -= may ? rows : 0;
        return may;
    }

    void compare(libesedb_table_t* table, int rows, const table_health& known) {
        if (rows != known.rows) {
            tell(QStringLiteral("libesedb finds %1 of %2").arg(rows).arg(rows_of(known.rows, known.name)));
        }
        const bool has_cause =
            rows != known.rows || known.damaged_pages > 0 || known.doubtful_pages > 0 || known.lacks_long_values;
        if (!has_cause && !may_walk_anyway(rows)) {
            return;
        }
        const ese_walk walk = walk_table(table, rows, cancelled);
        if (walk.refused_rows > 0) {
            tell(QStringLiteral("libesedb refuses %1 of %2; none is read from row %3 on")
                     .arg(walk.refused_rows)
                     .arg(rows_of(rows, known.name))
                     .arg(walk.first_refused + 1));
        }
        if (walk.refused_values > 0) {
            tell(QStringLiteral("libesedb refuses %1 values in %2").arg(walk.refused_values).arg(known.name));
        }
        if (walk.lost_values > 0) {
            tell(QStringLiteral("libesedb cannot read %1 long values of %2").arg(walk.lost_values).arg(known.name));
        }
        if (known.doubtful_pages > 0) {
            tell(QStringLiteral("rows of %1 on %2 pages are not built as its rows are; their values may be wrong")
                     .arg(known.name)
                     .arg(known.doubtful_pages));
        }
    }

    const evidence_record& record;
    libesedb_file_t* file;
    const std::function<bool()>& cancelled;
    health_report& report;
    int rows_to_spare = 256; // some milliseconds' worth
};

// Newer systems keep parts of the web cache elsewhere in the same file.
void note_newer_layout(const evidence_record& record, health_report& report) {
    QStringList found;
    for (const table_health& table : record.health.ese->tables) {
        if (table.name == QLatin1String("PartitionsEx") || table.name.startsWith(QLatin1String("CookieEntryEx_"))) {
            found << QStringLiteral("%1 (%2 rows)").arg(table.name).arg(table.rows);
        }
    }
    if (!found.isEmpty()) {
        report.add_note(record.path,
                        QStringLiteral("the web cache has tables of a newer layout, which are not read: ") +
                            found.join(QStringLiteral(", ")));
    }
}

} // namespace

void probe_ese_database(const evidence_record& record, const QStringList& selected,
                        const std::function<bool()>& cancelled, health_report& report) {
    const ese::file_handle file = ese::open_file(record.location);
    if (!file) {
        report.add_problem(record.path, QStringLiteral("libesedb does not open the ESE database"));
        return;
    }
    probe one(record, file.get(), cancelled, report);
    for (const QString& table : wanted_tables(record, selected)) {
        if (!cancelled()) {
            one.look_at(table);
        }
    }
    if (is_web_cache(record.path)) {
        note_newer_layout(record, report);
    }
}
