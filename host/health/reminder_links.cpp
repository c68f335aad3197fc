// SPDX-License-Identifier: MIT
// Look-ups by id; whatever is not unique is not guessed.
#include "host/health/reminder_links.h"

#include <QCryptographicHash>
#include <QHash>

namespace {

constexpr int repeated = -1;
constexpr int missing = -2;

// Id -> row, or repeated.
template <class Rows, class Id>
QHash<QByteArray, int> numbered(const Rows& rows, const Id& id_of) {
    QHash<QByteArray, int> numbers;
    for (int row = 0; row < rows.size(); ++row) {
        const QByteArray& id = id_of(rows[row]);
        numbers.insert(id, numbers.contains(id) ? repeated : row);
    }
    return numbers;
}

} // namespace

QVector<reminder_link> join_reminders(const QVector<QByteArray>& trigger_rows, const QVector<trigger_ids>& triggers,
                                      const QVector<QByteArray>& reminders) {
    const auto itself = [](const QByteArray& id) -> const QByteArray& { return id; };
    const QHash<QByteArray, int> of_row = numbered(trigger_rows, itself);
    const QHash<QByteArray, int> of_trigger =
        numbered(triggers, [](const trigger_ids& ids) -> const QByteArray& { return ids.id; });
    const QHash<QByteArray, int> of_reminder = numbered(reminders, itself);
    const auto link_of = [&](const QByteArray& id) -> reminder_link {
        if (id.isEmpty()) {
            return {-1, "the trigger's id is missing or unreadable"};
        }
        const int trigger = of_trigger.value(id, missing);
        if (trigger < 0 || of_row.value(id) == repeated) {
            return {-1,
                    trigger == missing ? "no row of Triggers has the trigger's id" : "the trigger's id is repeated"};
        }
        const QByteArray& reminder_id = triggers[trigger].reminder_id;
        if (reminder_id.isEmpty()) {
            return {-1, "the reminder's id is missing or unreadable"};
        }
        const int reminder = of_reminder.value(reminder_id, missing);
        if (reminder < 0) {
            return {-1, reminder == missing ? "no reminder has the id" : "the reminder's id is repeated"};
        }
        return {reminder, nullptr};
    };
    QVector<reminder_link> links;
    links.reserve(trigger_rows.size());
    for (const QByteArray& id : trigger_rows) {
        links.append(link_of(id));
    }
    return links;
}

QVector<int> rows_by_key(const QStringList& keys, const QStringList& row_ids, int most) {
    QHash<QString, QVector<int>> rows_of;
    for (int row = 0; row < row_ids.size(); ++row) {
        if (row_ids[row].isEmpty()) {
            return {};
        }
        rows_of[row_ids[row]].append(row);
    }
    QVector<int> order;
    for (const QString& key : keys) {
        order += rows_of.value(key);
        if (order.size() > most) {
            return {};
        }
    }
    return order;
}

QByteArray digest_of(const QStringList& values) {
    QCryptographicHash hash(QCryptographicHash::Sha256);
    for (const QString& value : values) {
        const QByteArray bytes = value.toUtf8();
        hash.addData(QByteArray::number(bytes.size()) + ':' + bytes);
    }
    return hash.result().toHex();
}
