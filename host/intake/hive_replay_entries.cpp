// SPDX-License-Identifier: MIT
// Which entries of one or two logs apply, and in which order.
#include "host/intake/hive_log_entries.h"
#include "host/intake/hive_log_replay.h"

#include <algorithm>

namespace {

struct log_of_entries {
    named_log log;
    hive_entry_log read;
};

// The number at which a log's entries begin, or would if the first were not damaged.
qint64 start_of(const log_of_entries& one) {
    return one.read.entries.isEmpty() ? one.read.next : qint64{one.read.entries.first().sequence};
}

// The logs that matter to the hive, the earlier one first: with entries that it does not have, or which are damaged
// where such entries would be. Without a sound base block the numbers cannot be weighed against the hive's, and the
// later log alone is used.
QVector<log_of_entries> logs_in_order(hive_replay& replay, const QVector<named_log>& logs,
                                      const hive_base_block& hive) {
    QVector<log_of_entries> found;
    for (const named_log& log : logs) {
        log_of_entries one{log, read_entry_log(log.bytes)};
        if (!one.read.damage.isEmpty()) {
            add_note(replay, log, one.read.damage);
        }
        keep_newer_entries(one.read, hive);
        const bool is_damaged = hive.is_sound && !one.read.damage.isEmpty() && one.read.next >= hive.secondary;
        if (!one.read.entries.isEmpty() || is_damaged) {
            found.append(one);
        } else {
            add_note(replay, log, QStringLiteral("it holds nothing newer than the hive"));
        }
    }
    const auto last = [](const log_of_entries& one) { return one.read.entries.last().sequence; };
    if (found.size() == 2 && !hive.is_sound) {
        found.remove(last(found.at(0)) < last(found.at(1)) ? 0 : 1);
    } else if (found.size() == 2 && start_of(found.at(1)) < start_of(found.at(0))) {
        std::swap(found[0], found[1]);
    }
    return found;
}

// Leaves the entries that follow the hive and each other without gaps: on a hive that lacks one, the later ones would
// give a state that never was.
void keep_connected(hive_replay& replay, QVector<log_of_entries>& logs, const hive_base_block& hive) {
    if (logs.isEmpty()) {
        return;
    }
    qint64 next = start_of(logs.first());
    const bool follows_hive = !hive.is_sound || next <= qMax(hive.primary, hive.secondary);
    for (log_of_entries& one : logs) {
        QVector<hive_log_entry>& entries = one.read.entries;
        const auto first = std::find_if(entries.begin(), entries.end(),
                                        [next](const hive_log_entry& entry) { return entry.sequence >= next; });
        entries.erase(entries.begin(), first);
        if (!entries.isEmpty() && (!follows_hive || entries.first().sequence != next)) {
            add_note(replay, one.log, QStringLiteral("the entries before its entry %1 are missing").arg(start_of(one)));
            replay.stopped_early = true;
            entries.clear();
        }
        next = entries.isEmpty() ? next : qint64{entries.last().sequence} + 1;
    }
}

// Cuts the entries off where the bins grow beyond reason. Gives the most room that the rest need.
qint64 cut_impossible_growth(hive_replay& replay, QVector<log_of_entries>& logs) {
    qint64 page_bytes = 0;
    qint64 largest = 0;
    bool is_possible = true;
    for (log_of_entries& one : logs) {
        QVector<hive_log_entry>& entries = one.read.entries;
        const auto end = std::find_if(entries.begin(), entries.end(), [&](const hive_log_entry& entry) {
            page_bytes += entry.page_bytes;
            is_possible = is_possible && is_possible_growth(replay.hive, entry.bins_size, page_bytes);
            largest = is_possible ? qMax(largest, entry.bins_size) : largest;
            return !is_possible;
        });
        if (end != entries.end()) {
            add_note(replay, one.log,
                     QStringLiteral("its entry %1 lets the hive grow beyond reason").arg(end->sequence));
            replay.stopped_early = true;
            entries.erase(end, entries.end());
        }
    }
    return largest;
}

void apply_entries(hive_replay& replay, const log_of_entries& one) {
    for (const hive_log_entry& entry : one.read.entries) {
        put_entry_pages(replay.hive, one.log.bytes, entry);
        replay.pages += entry.pages;
    }
    replay.entries += one.read.entries.size();
    replay.logs.append(one.log.name);
    add_note(replay, one.log, QStringLiteral("it holds %1 entries newer than the hive").arg(one.read.entries.size()));
}

} // namespace

void apply_entry_logs(hive_replay& replay, const QVector<named_log>& logs, const hive_base_block& hive) {
    QVector<log_of_entries> used = logs_in_order(replay, logs, hive);
    keep_connected(replay, used, hive);
    const qint64 largest = cut_impossible_growth(replay, used);
    for (const log_of_entries& one : qAsConst(used)) {
        replay.stopped_early = replay.stopped_early || !one.read.damage.isEmpty();
    }
    const auto is_empty = [](const log_of_entries& one) { return one.read.entries.isEmpty(); };
    used.erase(std::remove_if(used.begin(), used.end(), is_empty), used.end());
    if (used.isEmpty()) {
        return;
    }
    make_room(replay.hive, largest);
    for (const log_of_entries& one : qAsConst(used)) {
        apply_entries(replay, one);
    }
    if (!hive.is_sound) {
        put_base_block(replay.hive, used.first().log.bytes, used.first().read.base_block);
        replay.base_block_recovered = true;
    }
    const hive_log_entry& last = used.last().read.entries.last();
    finish_base_block(replay.hive, last.sequence, last.bins_size);
}
