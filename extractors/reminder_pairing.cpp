// SPDX-License-Identifier: MIT
// List positions: copy j of row k of a file stands at the begin of the file's block plus j times the rows plus k.
#include "extractors/reminder_pairing.h"

#include <algorithm>
#include <iterator>

void reminder_pairing::add_file(const QStringList& new_keys, int reminder_rows,
                                const QVector<trigger_row>& trigger_rows) {
    for (const QString& key : new_keys) {
        numbers_of_key[key].append(key_count++);
    }
    block added{};
    if (!blocks.isEmpty()) {
        const block& last = blocks.last();
        added.first_reminder = last.first_reminder + last.reminder_rows;
        added.first_trigger = last.first_trigger + last.trigger_rows;
        added.reminder_begin = last.reminder_end;
        added.trigger_begin = last.trigger_end;
    }
    added.copies = key_count;
    added.reminder_rows = reminder_rows;
    added.trigger_rows = trigger_rows.size();
    added.reminder_end = added.reminder_begin + qint64{added.copies} * added.reminder_rows;
    added.trigger_end = added.trigger_begin + qint64{added.copies} * added.trigger_rows;
    find_matches(trigger_rows, added);
    blocks.append(added);
}

// Goes from the rows' ids to the keys: going through all keys for each file would cost files times keys.
void reminder_pairing::find_matches(const QVector<trigger_row>& trigger_rows, block& added) const {
    QHash<QString, int> group_of_id;
    QVector<int> unstamped;
    for (int row = 0; row < trigger_rows.size(); ++row) {
        const QString& id = trigger_rows[row].id;
        if (!trigger_rows[row].stamped) {
            unstamped.append(row);
            continue;
        }
        const auto numbers = numbers_of_key.constFind(id);
        if (numbers == numbers_of_key.constEnd()) {
            continue;
        }
        const auto known = group_of_id.constFind(id);
        if (known != group_of_id.constEnd()) {
            added.groups[*known].append(row);
            continue;
        }
        const int group = added.groups.size();
        group_of_id.insert(id, group);
        added.groups.append(QVector<int>{row});
        for (const int key : *numbers) {
            added.matches.append({key, group});
        }
    }
    std::sort(added.matches.begin(), added.matches.end(),
              [](const match& left, const match& right) { return left.key < right.key; });
    if (!unstamped.isEmpty()) {
        add_unstamped(unstamped, added);
    }
}

// Unstamped rows pair under every key, also under those that have no row of their own.
void reminder_pairing::add_unstamped(const QVector<int>& unstamped, block& added) {
    for (QVector<int>& group : added.groups) {
        QVector<int> merged;
        std::merge(group.cbegin(), group.cend(), unstamped.cbegin(), unstamped.cend(), std::back_inserter(merged));
        group = merged;
    }
    const int unstamped_only = added.groups.size();
    added.groups.append(unstamped);
    QVector<match> all;
    all.reserve(added.copies);
    auto own = added.matches.cbegin();
    for (int key = 0; key < added.copies; ++key) {
        const bool has_own = own != added.matches.cend() && own->key == key;
        all.append(has_own ? *own++ : match{key, unstamped_only});
    }
    added.matches = all;
}

// position never falls from call to call; block_index remembers how far the last one came.
int reminder_pairing::reminder_at(qint64 position, int& block_index) const {
    while (block_index < blocks.size() && position >= blocks[block_index].reminder_end) {
        ++block_index;
    }
    if (block_index == blocks.size()) {
        return -1;
    }
    const block& holder = blocks[block_index];
    return holder.first_reminder + static_cast<int>((position - holder.reminder_begin) % holder.reminder_rows);
}

bool reminder_pairing::for_each_pair(const std::function<bool()>& keep_going,
                                     const std::function<void(int trigger, int reminder)>& visit) const {
    int reminder_block = 0;
    qint64 walked = 0;
    // The rows of one copy of a trigger table; false when told to stop.
    const auto visit_copy = [&](const block& file, const match& matched) {
        const qint64 copy_begin = file.trigger_begin + qint64{matched.key} * file.trigger_rows;
        for (const int row : file.groups[matched.group]) {
            if (!keep_going()) {
                return false;
            }
            visit(file.first_trigger + row, reminder_at(copy_begin + row, reminder_block));
            walked = copy_begin + row + 1;
        }
        return true;
    };
    for (const block& file : blocks) {
        for (const match& matched : file.matches) {
            if (!visit_copy(file, matched)) {
                return false;
            }
        }
    }
    return blocks.isEmpty() || walked == blocks.last().trigger_end || keep_going();
}
