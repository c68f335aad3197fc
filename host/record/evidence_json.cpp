// SPDX-License-Identifier: MIT
// Both ways through the same names.
#include "host/record/evidence_json.h"

#include <QJsonArray>

#include <algorithm>

namespace {

constexpr int most_listed = 10000; // damaged pages and tables of one file

QString key(const char* name) {
    return QLatin1String(name);
}

QJsonValue text_or_null(const QString& text) {
    return text.isNull() ? QJsonValue() : QJsonValue(text);
}

QString text_from(const QJsonObject& object, const char* name) {
    return object[key(name)].toString();
}

qint64 count_from(const QJsonObject& object, const char* name) {
    constexpr double largest = 9e15;
    return static_cast<qint64>(std::clamp(object[key(name)].toDouble(), 0.0, largest));
}

quint32 number_from(const QJsonObject& object, const char* name) {
    return static_cast<quint32>(std::min<qint64>(count_from(object, name), 0xffffffff));
}

QStringList texts_from(const QJsonObject& object, const char* name) {
    QStringList texts;
    const QJsonArray list = object[key(name)].toArray();
    for (const QJsonValue& text : list) {
        if (texts.size() < most_listed) {
            texts.append(text.toString());
        }
    }
    return texts;
}

QJsonObject to_json(const damaged_page& page) {
    return {{key("number"), static_cast<qint64>(page.number)},
            {key("table"), page.table},
            {key("part"), page.part},
            {key("reason"), page.reason}};
}

QJsonObject to_json(const table_health& table) {
    return {{key("name"), table.name},
            {key("rows"), table.rows},
            {key("rows_outside"), table.rows_outside},
            {key("long_value_entries"), table.long_value_entries},
            {key("damaged_pages"), table.damaged_pages}};
}

QJsonObject to_json(const ese_health& health) {
    QJsonArray damaged;
    for (const damaged_page& page : health.damaged) {
        damaged.append(to_json(page));
    }
    QJsonArray tables;
    for (const table_health& table : health.tables) {
        tables.append(to_json(table));
    }
    return {{key("page_size"), static_cast<qint64>(health.page_size)},
            {key("version"), static_cast<qint64>(health.version)},
            {key("revision"), static_cast<qint64>(health.revision)},
            {key("state"), health.state},
            {key("last_consistent"), text_or_null(health.last_consistent)},
            {key("last_attached"), text_or_null(health.last_attached)},
            {key("last_detached"), text_or_null(health.last_detached)},
            {key("pages"), health.pages},
            {key("unwritten_pages"), health.unwritten_pages},
            {key("damaged_pages"), health.damaged_pages},
            {key("first_damaged"), damaged},
            {key("tables_known"), health.are_tables_known},
            {key("tables"), tables}};
}

ese_health ese_from(const QJsonObject& object) {
    ese_health health;
    health.page_size = number_from(object, "page_size");
    health.version = number_from(object, "version");
    health.revision = number_from(object, "revision");
    health.state = text_from(object, "state");
    health.last_consistent = text_from(object, "last_consistent");
    health.last_attached = text_from(object, "last_attached");
    health.last_detached = text_from(object, "last_detached");
    health.pages = count_from(object, "pages");
    health.unwritten_pages = count_from(object, "unwritten_pages");
    health.damaged_pages = count_from(object, "damaged_pages");
    health.are_tables_known = object[key("tables_known")].toBool();
    const QJsonArray damaged = object[key("first_damaged")].toArray();
    for (const QJsonValue& value : damaged) {
        const QJsonObject page = value.toObject();
        if (health.damaged.size() < most_listed) {
            health.damaged.append({number_from(page, "number"), text_from(page, "table"), text_from(page, "part"),
                                   text_from(page, "reason")});
        }
    }
    const QJsonArray tables = object[key("tables")].toArray();
    for (const QJsonValue& value : tables) {
        const QJsonObject table = value.toObject();
        if (health.tables.size() < most_listed) {
            health.tables.append({text_from(table, "name"), 0, 0, count_from(table, "rows"),
                                  count_from(table, "rows_outside"), count_from(table, "long_value_entries"),
                                  count_from(table, "damaged_pages")});
        }
    }
    return health;
}

QJsonObject to_json(const hive_health& health) {
    return {{key("minor_version"), static_cast<qint64>(health.minor_version)},
            {key("primary_sequence"), static_cast<qint64>(health.primary_sequence)},
            {key("secondary_sequence"), static_cast<qint64>(health.secondary_sequence)},
            {key("last_written"), text_or_null(health.last_written)},
            {key("bins_size"), health.bins_size}};
}

hive_health hive_from(const QJsonObject& object) {
    hive_health health;
    health.minor_version = number_from(object, "minor_version");
    health.primary_sequence = number_from(object, "primary_sequence");
    health.secondary_sequence = number_from(object, "secondary_sequence");
    health.last_written = text_from(object, "last_written");
    health.bins_size = count_from(object, "bins_size");
    return health;
}

} // namespace

QJsonObject to_json(const evidence_record& record) {
    QJsonObject object{
        {key("path"), record.path},
        {key("kind"), record.kind},
        {key("size"), record.size},
        {key("sha256"), record.sha256.isEmpty() ? QJsonValue() : QString::fromLatin1(record.sha256)},
        {key("modified"), text_or_null(record.modified)},
        {key("accessed"), text_or_null(record.accessed)},
        {key("changed"), text_or_null(record.changed)},
        {key("created"), text_or_null(record.created)},
        {key("problem"), text_or_null(record.health.problem)},
        {key("problems"), QJsonArray::fromStringList(record.health.problems)},
        {key("notes"), QJsonArray::fromStringList(record.health.notes)},
    };
    if (!record.sha256_with_logs.isEmpty()) {
        object.insert(key("sha256_with_logs"), QString::fromLatin1(record.sha256_with_logs));
        object.insert(key("log_entries"), record.log_entries);
    }
    if (record.health.ese) {
        object.insert(key("ese"), to_json(*record.health.ese));
    }
    if (record.health.hive) {
        object.insert(key("hive"), to_json(*record.health.hive));
    }
    return object;
}

evidence_record evidence_from(const QJsonObject& object) {
    evidence_record record;
    record.path = text_from(object, "path");
    record.kind = text_from(object, "kind");
    record.size = count_from(object, "size");
    record.sha256 = text_from(object, "sha256").toLatin1();
    record.modified = text_from(object, "modified");
    record.accessed = text_from(object, "accessed");
    record.changed = text_from(object, "changed");
    record.created = text_from(object, "created");
    record.sha256_with_logs = text_from(object, "sha256_with_logs").toLatin1();
    record.log_entries = count_from(object, "log_entries");
    record.health.problem = text_from(object, "problem");
    record.health.problems = texts_from(object, "problems");
    record.health.notes = texts_from(object, "notes");
    if (object.contains(key("ese"))) {
        record.health.ese = ese_from(object[key("ese")].toObject());
    }
    if (object.contains(key("hive"))) {
        record.health.hive = hive_from(object[key("hive")].toObject());
    }
    return record;
}
