// SPDX-License-Identifier: MIT
// A worker that is lost costs the step that it was in: a fresh one goes on with the steps behind it, in a folder of its
// own, so that nothing of the lost one is used but the steps that it had finished.
#include "host/run/supervisor.h"

#include "host/run/cancellation.h"
#include "host/run/staged_names.h"
#include "host/run/supervisor_profile.h"
#include "host/run/worker_links.h"
#include "source/places.h"

#include <QDir>
#include <QFile>

#include <algorithm>

namespace {

constexpr int look_round_ms = 50;

QString label_of(const QList<system_account>& accounts) {
    return accounts.size() == 1 ? accounts.first().system_user : QStringLiteral("all profiles");
}

// The place that a table's rows come from, below a profile or package folder.
QString place_of(const QString& table) {
    QString found;
    places::for_each([&](const evidence_place& place) {
        if (QString(QLatin1String(place.tables)).split(QLatin1Char(' ')).contains(table)) {
            found = QLatin1String(place.below);
        }
    });
    return found;
}

} // namespace

supervisor::supervisor(const extract_options& asked, const QString& source_root, const QString& library_file,
                       const QList<QList<system_account>>& groups, run_summary& result, staged_source* copies)
    : options(asked), root(source_root), library(library_file), summary(result), staged(copies),
      progress(asked.progress, groups.size()), merge_target(result.output.database) {
    for (const QList<system_account>& accounts : groups) {
        auto one = std::make_unique<profile>();
        one->place = static_cast<int>(profiles.size());
        one->accounts = accounts;
        one->label = label_of(accounts);
        one->remaining = only_checks() ? QStringList() : options.tables;
        one->linked = reminder_tables(one->remaining).isEmpty();
        profiles.push_back(std::move(one));
    }
    if (staged != nullptr) {
        facts = source_facts{creation_times_of(staged->outcome().files), QString()};
    }
    connect(&clock, &QTimer::timeout, this, &supervisor::look_round);
}

supervisor::~supervisor() = default;

bool supervisor::only_checks() const {
    return summary.output.folder.isEmpty();
}

void supervisor::run() {
    remove_workers_folder(); // of a run that was killed
    clock.start(look_round_ms);
    start_more();
    if (running > 0) {
        loop.exec();
    }
    for (const auto& one : profiles) { // a cancel may have kept a lost worker from having a follower
        if (one->state == profile::waiting && !one->folders.isEmpty()) {
            take_rows_of(*one);
        }
    }
    if (is_looking) {
        loop.exec();
    }
    clock.stop();
    merge_finished();
    for (const auto& one : profiles) {
        summary.health.add(one->health);
        summary.evidence += one->evidence;
        for (const system_account& account : qAsConst(one->accounts)) {
            if (one->state == profile::waiting) {
                summary.not_examined.append(account.system_user);
            }
        }
    }
    progress.clear();
    remove_workers_folder();
}

void supervisor::remove_workers_folder() const {
    if (!only_checks()) {
        QDir(summary.output.workers).removeRecursively();
    }
}

bool supervisor::may_start() const {
    return !is_cancelled() && summary.output_troubles.isEmpty() && summary.fault.isEmpty();
}

void supervisor::start_more() {
    for (const auto& one : profiles) {
        if (running >= options.jobs || !may_start()) {
            break;
        }
        if (one->state == profile::waiting) {
            start_worker(*one);
        }
    }
    if (running == 0 && !is_looking) {
        loop.quit();
    }
}

bool supervisor::make_folder_for(profile& one) {
    const QString folder = summary.output.workers + QStringLiteral("%1-%2").arg(one.place).arg(one.folders.size());
    const bool made = QDir().mkpath(folder);
    if (made) {
        one.folders.append(folder);
    } else {
        summary.add_trouble(QStringLiteral("the folder %1 cannot be made").arg(folder));
    }
    return made;
}

worker_request supervisor::request_for(const profile& one) const {
    worker_request request;
    request.source_root = root;
    request.accounts = one.accounts;
    request.check = !one.checked;
    request.checked_tables = options.tables;
    request.tables = one.remaining;
    request.link = !one.linked;
    request.folder = one.folders.value(one.folders.size() - 1);
    request.library = library;
    request.os_scheme = options.os_scheme;
    request.source_number = options.source_number;
    request.log_terminal = options.log_terminal;
    request.encipher_log = options.encipher_log;
    request.sandbox = options.sandbox;
    return request;
}

void supervisor::start_worker(profile& one) {
    if (!only_checks() && !make_folder_for(one)) {
        return;
    }
    one.state = profile::working;
    one.steps_done = 0;
    one.worker = std::make_unique<worker_process>(request_for(one), options.limits);
    connect(one.worker.get(), &worker_process::message_came, this,
            [this, &one](const worker_message& message) { take_message(one, message); });
    connect(one.worker.get(), &worker_process::worker_gone, this,
            [this, &one](const worker_loss& loss) { take_end(one, loss); });
    ++running;
    one.worker->begin();
    tell_progress(one);
}

void supervisor::take_message(profile& one, const worker_message& message) {
    switch (message.what) {
    case worker_message::confined:
        summary.sandbox = message.sandbox;
        break;
    case worker_message::evidence:
        take_evidence(one, message.record);
        return;
    case worker_message::looked_over:
        one.health = message.health;
        break;
    case worker_message::checked:
        one.checked = true;
        one.health = message.health;
        one.worker->step_began();
        break;
    case worker_message::rows:
        one.rows_told = message.number;
        break;
    case worker_message::step_done:
        one.steps_done = std::min(one.remaining.size(), one.steps_done + 1);
        one.rows_kept = one.rows_told;
        one.worker->step_began();
        break;
    case worker_message::linked:
        one.linked = true;
        one.links = worker_links(one.folders.last());
        break;
    case worker_message::failed:
        summary.fault = message.text;
        break;
    case worker_message::ended:
        one.ended_runs += is_cancelled() || one.remaining.isEmpty() ? 0 : 1;
        break;
    case worker_message::planned: // of no worker of a profile
    case worker_message::staged:
    case worker_message::waiting:
    case worker_message::as_given:
    case worker_message::refused:
    case worker_message::unknown:
        break;
    }
    tell_progress(one);
}

void supervisor::take_evidence(profile& one, const evidence_record& record) {
    constexpr int most_kept = 100000; // a profile can hold any number of recordings
    if (one.evidence.size() < most_kept) {
        one.evidence.append(record);
    } else {
        ++summary.evidence_not_listed;
    }
}

void supervisor::take_end(profile& one, const worker_loss& loss) {
    --running;
    one.worker.release()->deleteLater(); // it is telling of its end
    if (one.steps_done > 0) {
        // Of a lost step some rows may be there: it is told as lost, so they are not taken. A cancelled one is told as
        // done and keeps them.
        one.databases.append({worker_database(one.folders.last()), one.remaining.mid(0, one.steps_done)});
    }
    one.rows_before += one.rows_kept;
    one.rows_told = one.rows_kept = 0;
    one.remaining = one.remaining.mid(one.steps_done);
    if (!one.folders.isEmpty()) {
        take_findings(one);
    }
    const bool lost = !loss.reason.isEmpty() && !is_cancelled();
    if (lost) {
        take_loss(one, loss);
    }
    if (!lost || (one.remaining.isEmpty() && one.linked)) {
        take_rows_of(one);
    } else {
        one.state = profile::waiting;
        if (may_start()) {
            start_worker(one);
        }
    }
    tell_progress(one);
    start_more();
}

void supervisor::take_loss(profile& one, const worker_loss& loss) {
    const bool in_step = one.checked && !one.remaining.isEmpty();
    const QString table = in_step ? one.remaining.takeFirst() : QString();
    summary.losses.append(
        {one.label, table, loss.file.isEmpty() ? place_of(table) : loss.file, loss.reason, loss.began});
    one.linked = one.linked || (one.checked && !in_step); // lost at it once is enough
    one.checked = true;                                   // what it was looked over for is told; the steps come next
}

void supervisor::take_findings(profile& one) {
    const QString log = worker_log(one.folders.last());
    log_findings findings;
    if (QFile::exists(log) && !read_log(log, 0, findings)) {
        summary.add_trouble(QStringLiteral("the debug log %1 cannot be read").arg(log));
    }
    one.log.add(findings);
    if (!findings.output_trouble.isEmpty()) {
        summary.add_trouble(QStringLiteral("the result database %1 cannot be written: %2")
                                .arg(summary.output.database, findings.output_trouble));
    }
}

void supervisor::look_round() {
    const bool pass_on = is_cancelled() && !cancel_passed_on;
    cancel_passed_on = cancel_passed_on || pass_on;
    for (const auto& one : profiles) {
        if (one->worker != nullptr && pass_on) {
            one->worker->cancel(cancel_signal());
        }
        if (one->worker != nullptr) {
            one->worker->hold_to_limits();
        }
    }
}

void supervisor::tell_progress(const profile& one) {
    const QString table = one.checked ? one.remaining.value(one.steps_done) : QString();
    const auto done = std::count_if(profiles.begin(), profiles.end(), [](const auto& other) {
        return other->state == profile::finished || other->state == profile::merged;
    });
    progress.update(one.place, {one.label, table, one.rows_before + one.rows_told, one.state == profile::working},
                    static_cast<int>(done));
}
