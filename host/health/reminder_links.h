// SPDX-License-Identifier: MIT
// Which reminder a trigger row belongs to by the ids that the evidence holds. Pure rules on ids; the result rows, which
// are paired by position, have no part in it.
#pragma once

#include <QByteArray>
#include <QString>
#include <QStringList>
#include <QVector>

// A row of "Triggers". Ids are exact bytes; an empty one is missing or unreadable.
struct trigger_ids {
    QByteArray id;
    QByteArray reminder_id;
};

struct reminder_link {
    int reminder = -1;         // index of the linked reminder; -1: undecided
    const char* why = nullptr; // it is undecided; null where it is not
};

// One link for each row of a trigger table, in their order. Only an id that stands in exactly one row of each table on
// the way leads on.
QVector<reminder_link> join_reminders(const QVector<QByteArray>& trigger_rows, const QVector<trigger_ids>& triggers,
                                      const QVector<QByteArray>& reminders);

// The order in which rows of one file are written: key by key, under each the rows that bear it. Empty when it is
// longer than most, or when a row without an id makes it uncertain.
QVector<int> rows_by_key(const QStringList& keys, const QStringList& row_ids, int most);

// Tells rows apart by the values that they have from their trigger: equal lists and no others have equal digests.
QByteArray digest_of(const QStringList& values);
