// SPDX-License-Identifier: MIT
// Which of two logs of the old format applies.
#include "host/intake/hive_dirty_log.h"
#include "host/intake/hive_log_replay.h"

namespace {

// Why a log cannot be applied to the hive; empty: it can.
QString problem_with(const hive_dirty_log& read, const QByteArray& hive) {
    if (!read.problem.isEmpty()) {
        return read.problem;
    }
    if (!is_log_of_hive(read, hive)) {
        return QStringLiteral("it was written for another state of the hive");
    }
    if (!is_possible_growth(hive, read.base_block.bins_size, read.pages * hive_format::page_size)) {
        return QStringLiteral("it lets the hive grow beyond reason");
    }
    return QString();
}

} // namespace

void apply_dirty_logs(hive_replay& replay, const QVector<named_log>& logs, const hive_base_block& hive) {
    const named_log* log = nullptr;
    hive_dirty_log chosen;
    for (const named_log& one : logs) {
        const hive_dirty_log read = read_dirty_log(one.bytes);
        const QString problem = problem_with(read, replay.hive);
        if (!problem.isEmpty()) {
            add_note(replay, one, problem);
        } else if (log == nullptr || read.base_block.primary > chosen.base_block.primary) {
            log = &one;
            chosen = read;
        }
    }
    if (log == nullptr) {
        return;
    }
    QByteArray applied = replay.hive;
    make_room(applied, chosen.base_block.bins_size);
    const qint64 pages = put_dirty_pages(applied, log->bytes, chosen);
    add_note(replay, *log, QStringLiteral("it holds %1 changed pages").arg(chosen.pages));
    if (pages < chosen.pages) {
        add_note(replay, *log, QStringLiteral("only %1 of them come before a damaged bin").arg(pages));
        replay.stopped_early = true;
    }
    if (pages == 0 && replay.stopped_early) {
        return;
    }
    put_base_block(applied, log->bytes, chosen.base_block);
    finish_base_block(applied, chosen.base_block.primary, chosen.base_block.bins_size);
    replay.hive = applied;
    replay.pages = pages;
    replay.entries = 1;
    replay.logs.append(log->name);
    replay.base_block_recovered = !hive.is_sound;
}
