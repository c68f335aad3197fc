// SPDX-License-Identifier: MIT
// What finished profiles wrote is taken into the result database, the links and the debug log, in the profiles' order.
#include "host/record/links_file.h"
#include "host/run/named_files.h"
#include "host/run/result_merge.h"
#include "host/run/supervisor_profile.h"
#include "host/run/worker_links.h"

#include <QDir>
#include <QFile>

#include <algorithm>
#include <utility>

namespace {

// Appends the file to the log; its last line is ended if the worker did not come to that.
bool append_log(const QString& from, const QString& to) {
    QFile source(from);
    QFile log(to);
    if (!source.exists()) {
        return true;
    }
    if (!source.open(QIODevice::ReadOnly) || !log.open(QIODevice::WriteOnly | QIODevice::Append)) {
        return false;
    }
    QByteArray last;
    constexpr qint64 at_once = qint64{1024} * 1024;
    for (QByteArray part = source.read(at_once); !part.isEmpty(); part = source.read(at_once)) {
        if (log.write(part) != part.size()) {
            return false;
        }
        last = part.right(1);
    }
    const bool ended = last.isEmpty() || last == "\n";
    return (ended || log.write("\n") == 1) && log.flush();
}

} // namespace

// No worker will write rows of it any more.
void supervisor::take_rows_of(profile& one) {
    one.state = profile::finished;
    if (staged != nullptr) {
        one.state = profile::naming;
        collect_named_files(one);
    }
    go_on_with_rows();
}

void supervisor::go_on_with_rows() {
    look_for_named_files();
    if (!options.clear) {
        merge_finished();
    }
}

void supervisor::collect_named_files(profile& one) {
    named_files named = files_named_by(one.databases);
    one.named = std::move(named.paths);
    if (!named.missing.isEmpty()) {
        summary.health.add_problem(
            root, QStringLiteral("not all files that web cache entries of %1 name were looked for outside of the "
                                 "package folder: %2")
                      .arg(one.label, named.missing));
    }
}

// Of one profile after the other, beside the workers of those that come behind it.
void supervisor::look_for_named_files() {
    for (const auto& each : profiles) {
        profile& one = *each;
        if (is_looking || one.state != profile::naming) {
            continue;
        }
        is_looking = staged->make_named(std::exchange(one.named, {}), [this, &one] {
            is_looking = false;
            one.state = profile::finished;
            tell_progress(one);
            go_on_with_rows();
            start_more();
        });
        one.state = is_looking ? profile::naming : profile::finished;
    }
}

void supervisor::merge_finished() {
    if (!only_checks() && options.clear) {
        replace_database();
    } else if (!only_checks()) {
        merge_in_order();
    }
}

// With --clear the rows go into a copy, when all profiles are through, and it takes the database's place only when it
// is whole: the rows of earlier runs must not be lost for an unfinished run's.
void supervisor::replace_database() {
    merge_target = summary.output.workers + QStringLiteral("cleared.sqlite");
    QString error;
    const bool any =
        std::any_of(profiles.begin(), profiles.end(), [](const auto& one) { return one->state == profile::finished; });
    if (!any || !summary.output_troubles.isEmpty()) {
        return;
    }
    const QString links = links_file(summary.output.database);
    bool done = copy_database(summary.output.database, merge_target, error) &&
                (!QFile::exists(links) || copy_database(links, links_file(merge_target), error));
    if (done) {
        merge_in_order();
        done = !has_cleared || !summary.output_troubles.isEmpty() || put_cleared_in_place(links, error);
    }
    if (!done) {
        summary.add_trouble(
            QStringLiteral("the result database %1 cannot be written: %2").arg(summary.output.database, error));
    }
    if (!summary.output_troubles.isEmpty()) {
        summary.rows.clear();
    }
}

// Links must never stand beside rows of another run: they go first and come last.
bool supervisor::put_cleared_in_place(const QString& links, QString& error) const {
    const QString new_links = links_file(merge_target);
    QFile::remove(links);
    return put_in_place(merge_target, summary.output.database, error) &&
           (!QFile::exists(new_links) || put_in_place(new_links, links, error));
}

void supervisor::merge_in_order() {
    for (const auto& one : profiles) {
        const bool has_trouble =
            !one->log.output_trouble.isEmpty() || (options.clear && !summary.output_troubles.isEmpty());
        if (has_trouble || (one->state != profile::finished && one->state != profile::merged)) {
            return;
        }
        if (one->state == profile::finished) {
            merge(*one);
        }
    }
}

void supervisor::merge(profile& one) {
    one.state = profile::merged;
    const bool clear = options.clear && !has_cleared;
    QString links_trouble;
    if (clear && !clear_links(merge_target, options.tables, links_trouble)) {
        summary.add_trouble(QStringLiteral("the links of reminders cannot be cleared: %1").arg(links_trouble));
        return;
    }
    const merge_outcome outcome = merge_all_that_can_be_read(one, clear);
    if (!outcome.done) {
        summary.add_trouble(QStringLiteral("the result database %1 cannot be written: %2")
                                .arg(summary.output.database, outcome.trouble));
        return;
    }
    has_cleared = has_cleared || clear;
    add_links_of(one, outcome);
    if (outcome.rows < one.rows_before) {
        summary.add_trouble(QStringLiteral("rows were lost: the plugin wrote %1, the database %2 got %3")
                                .arg(one.rows_before)
                                .arg(summary.output.database)
                                .arg(outcome.rows));
    }
    summary.log.add(one.log);
    bool whole = one.log.ended_runs >= one.ended_runs;
    for (const QString& folder : qAsConst(one.folders)) {
        whole = append_log(worker_log(folder), summary.output.log) && whole;
        QDir(folder).removeRecursively();
    }
    if (!whole) {
        summary.add_trouble(
            QStringLiteral("the debug log %1 is not whole: it could not be written").arg(summary.output.log));
    }
}

void supervisor::add_links_of(const profile& one, const merge_outcome& outcome) {
    QString error;
    const linked_rows rows{merge_target, one.links, options.tables, outcome.keys_before};
    if (!reminder_tables(options.tables).isEmpty() && !add_links(rows, summary.links, error)) {
        summary.add_trouble(QStringLiteral("the links of reminders cannot be written: %1").arg(error));
    }
}

// A worker that was lost may have left a database that SQLite cannot read: its steps are lost then, no others'.
merge_outcome supervisor::merge_all_that_can_be_read(profile& one, bool clear) {
    if (facts && staged->holds_named()) {
        facts->root = root;
    }
    merge_outcome outcome = merge_workers(merge_target, one.databases, options.tables, clear, summary.rows, facts);
    while (!outcome.done && !outcome.damaged_worker.isEmpty()) {
        summary.losses.append({one.label, QString(), outcome.damaged_worker,
                               QStringLiteral("the worker's database is damaged: ") + outcome.damage});
        const auto is_damaged = [&](const worker_rows& rows) { return rows.database == outcome.damaged_worker; };
        one.databases.erase(std::remove_if(one.databases.begin(), one.databases.end(), is_damaged),
                            one.databases.end());
        one.rows_before = 0; // they are told as lost
        outcome = merge_workers(merge_target, one.databases, options.tables, clear, summary.rows, facts);
    }
    return outcome;
}
