// SPDX-License-Identifier: MIT
// Which trigger rows pair with which keys, and which reminder each pair gets. Pure arithmetic on ids and row counts.
//
// The rule, as a walk over two growing lists: for each database file, for each key known by then (keys of earlier
// files included), all reminder rows of the file are appended to the one list and all trigger rows, stamped with the
// key, to the other; then every stamped trigger row whose id equals its stamp pairs with what stands at its position
// in the reminder list. Copies of the lists would grow with keys times rows; here each list position is computed.
#pragma once

#include <QHash>
#include <QString>
#include <QStringList>
#include <QVector>

#include <functional>

class reminder_pairing {
public:
    // A row of a trigger table. A row without any value gets no stamp, so that its empty id equals its empty stamp
    // under every key.
    struct trigger_row {
        QString id;
        bool stamped = true;
    };

    // One database file: the keys that its plain records add, and the rows of its two tables in order. A file whose
    // tables cannot be read has no rows.
    void add_file(const QStringList& new_keys, int reminder_rows, const QVector<trigger_row>& trigger_rows);

    // Keys of all files added so far.
    int keys() const { return key_count; }

    // Every pair of all files added so far, in list order. Indexes count the rows of all files, each row once;
    // reminder is -1 where the reminder list has ended. keep_going is asked before each pair and once before the
    // positions behind the last one, if any; when it says no, the walk stops and returns false.
    bool for_each_pair(const std::function<bool()>& keep_going,
                       const std::function<void(int trigger, int reminder)>& visit) const;

private:
    // Trigger rows of one file that the key pairs with.
    struct match {
        int key;
        int group;
    };
    // What one file added to the two lists.
    struct block {
        int copies; // of both tables: one for each key known by then
        int reminder_rows;
        int trigger_rows;
        int first_reminder; // indexes of the file's first rows
        int first_trigger;
        qint64 reminder_begin; // list positions
        qint64 reminder_end;
        qint64 trigger_begin;
        qint64 trigger_end;
        QVector<match> matches;       // ascending by key
        QVector<QVector<int>> groups; // rows within the file, ascending
    };

    void find_matches(const QVector<trigger_row>& trigger_rows, block& added) const;
    static void add_unstamped(const QVector<int>& unstamped, block& added);
    int reminder_at(qint64 position, int& block_index) const;

    QHash<QString, QVector<int>> numbers_of_key;
    int key_count = 0;
    QVector<block> blocks;
};
