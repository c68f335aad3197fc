// SPDX-License-Identifier: MIT
// Takes the logs apart by their formats, and judges whether the outcome can be trusted.
#include "host/intake/hive_logs.h"

#include "host/health/file_checker.h"
#include "host/intake/hive_dirty_log.h"
#include "host/intake/hive_log_entries.h"
#include "host/intake/hive_log_replay.h"

namespace {

QString problem_of(const QByteArray& hive) {
    const auto checker = registry_hive_checker();
    checker->take(hive.constData(), hive.size());
    return checker->finish().problem;
}

// A hive that can be opened must not turn into one that is not worth opening.
bool is_trustworthy(const QByteArray& applied, const QByteArray& given, const hive_base_block& block) {
    return problem_of(applied).isEmpty() || (block.is_sound && !problem_of(given).isEmpty());
}

} // namespace

hive_replay apply_hive_logs(const QByteArray& hive, const QByteArray& log1, const QByteArray& log2) {
    const hive_base_block block = base_block_of(hive);
    hive_replay replay;
    replay.hive = hive;
    replay.is_unfinished = !block.is_finished();
    if (!replay.is_unfinished || hive.size() < hive_format::header_size) {
        return replay;
    }
    QVector<named_log> entry_logs;
    QVector<named_log> dirty_logs;
    for (const named_log& log : {named_log{QStringLiteral(".LOG1"), log1}, named_log{QStringLiteral(".LOG2"), log2}}) {
        if (!log.bytes.isEmpty()) {
            const bool has_entries = base_block_of(log.bytes).type == hive_file_type::entry_log;
            (has_entries ? entry_logs : dirty_logs).append(log);
        }
    }
    apply_entry_logs(replay, entry_logs, block);
    if (!replay.is_applied()) {
        apply_dirty_logs(replay, dirty_logs, block);
    }
    if (replay.is_applied() && !is_trustworthy(replay.hive, hive, block)) {
        hive_replay refused;
        refused.hive = hive;
        refused.is_unfinished = true;
        refused.notes = replay.notes;
        refused.notes.append(QStringLiteral("what %1 gives is not a consistent hive: nothing was applied")
                                 .arg(replay.logs.join(QStringLiteral(" and "))));
        return refused;
    }
    return replay;
}

int entries_newer_than_hive(const QByteArray& hive, const QByteArray& log) {
    const hive_base_block block = base_block_of(hive);
    if (block.is_finished()) {
        return 0;
    }
    hive_entry_log read = read_entry_log(log);
    keep_newer_entries(read, block);
    const hive_dirty_log dirty = read_dirty_log(log);
    const bool is_newer_dirty_log = dirty.problem.isEmpty() && is_log_of_hive(dirty, hive);
    return is_newer_dirty_log ? 1 : read.entries.size();
}
