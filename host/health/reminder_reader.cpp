// SPDX-License-Identifier: MIT
// Ids are read whole: the texts that rows are paired by end at the first zero byte, so different ids can share one.
#include "host/health/reminder_reader.h"

#include "common/filetime.h"
#include "common/text_decoding.h"
#include "ese/specific_table.h"
#include "ese/value_buffer.h"

#include <QMap>

namespace {

struct trigger_table {
    const char* name; // of the evidence's table
    const char* result;
    const char* kind;                                 // of its rows in "Triggers"
    QVector<QPair<const char*, const char*>> columns; // of evidence and result; a time's result column ends in "time"
};

const QVector<trigger_table>& trigger_tables() {
    static const QVector<trigger_table> tables = {
        {"TimeTriggers", "time_reminders", "2", {{"DateTime", "date_time"}}},
        {"LocationTriggers",
         "place_reminders",
         "1",
         {{"Name", "place"},
          {"Latitude", "latitude"},
          {"Longitude", "longitude"},
          {"Radius", "radius"},
          {"StartDate", "start_date_time"}}},
        {"ContactTriggers", "contact_triggers", "3", {{"ContactName", "contact_name"}}},
    };
    return tables;
}

struct core_record {
    QMap<QString, QByteArray> values; // as rows show them, by column
    QMap<QString, QByteArray> ids;    // whole; of the columns Id and ReminderId

    QString text(const char* column) const { return utf8_until_nul(values.value(QLatin1String(column))); }
    QByteArray id(const char* column) const { return ids.value(QLatin1String(column)); }
    qint64 time(const char* column) const {
        const qint64 ticks = text(column).toLongLong();
        return ticks > 0 ? (ticks - filetime::ticks_before_1970) / filetime::ticks_per_second : 0;
    }
};

using text_size = int (*)(libesedb_record_t*, int, size_t*, libesedb_error_t**);

// Empty where the value cannot be read; it begins with what kind of value it is, so that no two kinds are equal.
QByteArray whole_id(libesedb_record_t* record, int index, unsigned int type) {
    const bool is_text = type == LIBESEDB_COLUMN_TYPE_TEXT || type == LIBESEDB_COLUMN_TYPE_LARGE_TEXT;
    const text_size get_size =
        is_text ? libesedb_record_get_value_utf8_string_size : libesedb_record_get_value_data_size;
    const auto get = is_text ? libesedb_record_get_value_utf8_string : libesedb_record_get_value_data;
    constexpr size_t longest_id = 1024;
    size_t size = 0;
    if (libesedb_record_is_long_value(record, index, nullptr) == ese::success ||
        get_size(record, index, &size, nullptr) != ese::success || size == 0 || size > longest_id) {
        return {};
    }
    QByteArray id(static_cast<int>(size), '\0');
    if (get(record, index, reinterpret_cast<uint8_t*>(id.data()), size, nullptr) != ese::success) {
        return {};
    }
    const bool is_empty = is_text && size == 1; // the zero byte at its end
    return is_empty ? QByteArray() : (is_text ? 't' : 'b') + id;
}

// Hands over each record of a table; keeps the columns that are asked for.
class core_reader : public specific_table {
public:
    using specific_table::get_column_name_and_type;
    using specific_table::get_record_values;

    void read(const QString& path, const char* table, const QStringList& columns,
              const std::function<bool(const core_record&)>& take) {
        kept = columns;
        set_record_sink([this, &take] { return take(record); });
        start_parsing(path, QLatin1String(table));
        set_record_sink({});
    }
    void get_column_name_and_type(libesedb_record_t* handle, libesedb_error_t* error) override {
        record = core_record();
        specific_table::get_column_name_and_type(handle, error);
        list_struct_data.clear();
    }
    void get_record_values(libesedb_record_t* handle, libesedb_error_t* error, QString column, int index,
                           unsigned int type) override {
        if (kept.contains(column)) {
            record.values.insert(column, record_type_case(handle, index, type, error));
        }
        if (column == QLatin1String("Id") || column == QLatin1String("ReminderId")) {
            record.ids.insert(column, whole_id(handle, index, type));
        }
    }

private:
    QStringList kept;
    core_record record;
};

QStringList names(std::initializer_list<const char*> columns) {
    QStringList list;
    for (const char* column : columns) {
        list.append(QLatin1String(column));
    }
    return list;
}

// What the rows of "Triggers" give: the ids, and the keys of each kind in their order.
struct trigger_keys {
    QVector<trigger_ids> ids;
    QMap<QString, QStringList> keys;
};

trigger_keys read_keys(core_reader& reader, const QString& path, const std::function<bool()>& cancelled) {
    trigger_keys found;
    reader.read(path, "Triggers", names({"Id", "Kind"}), [&](const core_record& record) {
        found.ids.append({record.id("Id"), record.id("ReminderId")});
        found.keys[record.text("Kind")].append(latin1_until_nul(record.values.value(QStringLiteral("Id"))));
        return !cancelled();
    });
    return found;
}

trigger_table_links read_triggers(core_reader& reader, const QString& path, const trigger_table& table,
                                  const trigger_keys& keys, const QVector<QByteArray>& reminders,
                                  const std::function<bool()>& cancelled) {
    trigger_table_links found{QLatin1String(table.result), {}, {}, {}};
    QStringList wanted = names({"Id"});
    for (const auto& column : table.columns) {
        wanted.append(QLatin1String(column.first));
    }
    QVector<QByteArray> ids;
    QStringList shown_ids;
    reader.read(path, table.name, wanted, [&](const core_record& record) {
        QStringList values;
        for (const auto& [column, result] : table.columns) {
            const bool is_time = QLatin1String(result).endsWith(QLatin1String("time"));
            values.append(is_time ? QString::number(record.time(column)) : record.text(column));
        }
        found.digests.append(digest_of(values));
        ids.append(record.id("Id"));
        shown_ids.append(record.text("Id"));
        return !cancelled();
    });
    found.links = join_reminders(ids, keys.ids, reminders);
    constexpr int most_known = 1000000;
    found.written_order = rows_by_key(keys.keys.value(QLatin1String(table.kind)), shown_ids, most_known);
    return found;
}

} // namespace

QStringList reminder_content::values() const {
    return {title,
            text,
            QString::number(created),
            QString::number(updated),
            QString::number(accessed),
            QString::number(completed)};
}

QStringList trigger_columns(const QString& table) {
    QStringList columns;
    for (const trigger_table& known : trigger_tables()) {
        for (const auto& column : known.columns) {
            columns << (table == QLatin1String(known.result) ? QStringList(QLatin1String(column.second))
                                                             : QStringList());
        }
    }
    return columns;
}

core_links read_core_links(const QString& path, const std::function<bool()>& cancelled) {
    core_reader reader;
    core_links found;
    const trigger_keys keys = read_keys(reader, path, cancelled);
    QVector<QByteArray> ids;
    const QStringList wanted =
        names({"CreationTime", "LastUpdateTime", "LastAccessTime", "CompletionTime", "Title", "Text"});
    reader.read(path, "Reminders", wanted, [&](const core_record& record) {
        ids.append(record.id("Id"));
        found.reminders.append({record.text("Title"), record.text("Text"), record.time("CreationTime"),
                                record.time("LastUpdateTime"), record.time("LastAccessTime"),
                                record.time("CompletionTime")});
        return !cancelled();
    });
    for (const trigger_table& table : trigger_tables()) {
        found.tables.append(read_triggers(reader, path, table, keys, ids, cancelled));
    }
    return found;
}
