// SPDX-License-Identifier: MIT
// Copies get no times here, since a confined process may set none.
#include "host/run/staging_worker.h"

#include "host/exit_codes.h"
#include "host/health/utc_text.h"
#include "host/intake/as_it_stands.h"
#include "host/intake/names.h"
#include "host/intake/open_source.h"
#include "host/intake/staged_hives.h"
#include "host/intake/times.h"
#include "host/run/cancellation.h"
#include "source/native_names.h"

#include <QFile>
#include <QFileInfo>

#include <iterator>

namespace {

using namespace intake;

open_options options_of(const staging_request& asked) {
    const QString types[] = {QStringLiteral("folder"), QStringLiteral("image"), QStringLiteral("archive")};
    const auto* const type = std::find(std::begin(types), std::end(types), asked.type);
    open_options options;
    if (type != std::end(types)) {
        options.kind = static_cast<source_kind>(type - std::begin(types));
    }
    options.volume = asked.volume;
    options.limit.largest_entry = asked.archive_limit > 0 ? asked.archive_limit : options.limit.largest_entry;
    return options;
}

int exit_code_for(source_refusal refusal) {
    return refusal == source_refusal::no_users     ? exit_nothing_found
           : refusal == source_refusal::unreadable ? exit_failures
                                                   : exit_usage;
}

QString words_of(const opened_source& opened) {
    QString words = opened.problem;
    if (opened.refusal == source_refusal::not_a_source && !opened.reasons.isEmpty()) {
        words += QStringLiteral(" (%1)").arg(opened.reasons.join(QStringLiteral("; ")));
    }
    for (const image_volume& volume : opened.volumes) {
        const QString state = !volume.problem.isEmpty() ? volume.problem
                              : volume.roots.isEmpty()  ? QStringLiteral("no folder Users")
                                                        : QStringLiteral("holds a folder Users");
        words += QStringLiteral("; volume %1 (%2): %3")
                     .arg(volume.number)
                     .arg(volume.file_system.isEmpty() ? volume.description : volume.file_system, state);
    }
    return words;
}

// The asked profiles that are there, under either name; all when none was asked for.
QVector<QByteArray> profiles_of(const worker_request& request, opened_source& opened, health_report& findings) {
    if (request.accounts.isEmpty()) {
        return list_profiles(*opened.view, opened.root, findings);
    }
    entry_finder finder(*opened.view, opened.root.percent_encoded);
    QVector<QByteArray> profiles;
    for (const system_account& account : request.accounts) {
        for (const QString& name : {account.system_user, account.domain_user}) {
            const QByteArray native = QFile::encodeName(name);
            const bool is_new = is_plain_name(native) && !profiles.contains(native);
            if (is_new && finder.find(opened.root.path, "Users/" + native).there) {
                profiles.append(native);
            }
        }
    }
    return profiles;
}

QString time_text(const std::optional<qint64>& ticks) {
    if (!ticks) {
        return {};
    }
    const timespec time = timespec_of(*ticks);
    return utc_text(time.tv_sec, time.tv_nsec);
}

staged_file file_of(const staged_entry& entry) {
    staged_file file;
    file.entry = entry;
    file.record.path = shown_path(entry.source);
    file.record.kind = QStringLiteral("file");
    file.record.size = entry.size;
    file.record.sha256 = entry.sha256.toHex();
    file.record.sha256_with_logs = entry.sha256_with_logs.toHex();
    file.record.log_entries = entry.log_entries;
    file.record.created = time_text(entry.times.created);
    file.record.modified = time_text(entry.times.modified);
    file.record.accessed = time_text(entry.times.accessed);
    file.record.changed = time_text(entry.times.changed);
    return file;
}

bool is_usable_as_given(const worker_request& request, opened_source& opened, const QVector<QByteArray>& profiles) {
    if (opened.kind != source_kind::folder) {
        return false;
    }
    const standing how = standing_of(*opened.view, opened.root, profiles);
    const bool may_apply = request.staging.hive_logs && how == standing::has_logs;
    return how != standing::needs_staging && !(may_apply && has_unfinished_hive(*opened.view, opened.root, profiles));
}

void send_staged(const staged_entry& entry, const message_sender& send) {
    worker_message staged;
    staged.what = worker_message::staged;
    staged.file = file_of(entry);
    send(staged);
}

// Tells each file, many at a time.
class plan_messages {
public:
    explicit plan_messages(const message_sender& sender) : send(sender) { message.what = worker_message::planned; }
    void add(const QByteArray& source) {
        message.paths.append(source);
        bytes += source.size();
        constexpr int most_bytes = 1 << 16;
        if (bytes > most_bytes) {
            flush();
        }
    }
    void flush() {
        if (!message.paths.isEmpty()) {
            send(message);
        }
        message.paths.clear();
        bytes = 0;
    }

private:
    const message_sender& send;
    worker_message message;
    int bytes = 0;
};

void send_findings(const health_report& findings, const message_sender& send) {
    worker_message checked;
    checked.what = worker_message::checked;
    checked.health = findings;
    send(checked);
}

// False: staging cannot go on.
bool stage_parts(const worker_request& request, opened_source& opened, const QVector<QByteArray>& profiles,
                 const staging_limit& limit, const message_sender& send) {
    const QByteArray folder = QFile::encodeName(request.folder);
    const std::function<bool()> cancelled = is_cancelled;
    plan_messages plan(send);
    const staging_hearer hearer{[&](const planned_entry& one) { plan.add(one.source); },
                                [&](const staged_entry& entry) {
                                    plan.flush();
                                    send_staged(entry, send);
                                }};
    staging_result result = stage_profiles(*opened.view, opened.root, profiles, folder, limit, cancelled, hearer);
    if (request.staging.hive_logs) {
        apply_staged_logs(folder, result, hearer);
    }
    plan.flush();
    send_findings(result.findings, send);
    if (!result.stopped.isEmpty()) {
        worker_message refused;
        refused.what = worker_message::refused;
        refused.text = result.stopped;
        refused.number = exit_output;
        send(refused);
    }
    return result.stopped.isEmpty();
}

// Deliberate: a cancel ends no question. Rows that were written before it stay, and must not tell of a file that it
// does not exist when nobody has looked.
void stage_names(const worker_request& request, opened_source& opened, const question_reader& next_question,
                 const staging_limit& limit, const message_sender& send) {
    worker_message waiting;
    waiting.what = worker_message::waiting;
    send(waiting);
    while (const std::optional<QVector<QByteArray>> paths = next_question()) {
        const staging_result result = stage_existing(*opened.view, opened.root, *paths,
                                                     QFile::encodeName(request.folder), limit, [] { return false; });
        for (const staged_entry& entry : result.entries) {
            send_staged(entry, send);
        }
        send_findings(result.findings, send);
        send(waiting);
    }
}

void stage_opened(const worker_request& request, opened_source& opened, const question_reader& next_question,
                  const message_sender& send) {
    health_report findings = opened.findings;
    const QVector<QByteArray> profiles = profiles_of(request, opened, findings);
    worker_message next;
    if (is_usable_as_given(request, opened, profiles)) {
        next.what = worker_message::as_given; // what there is to tell is told by those who read the folder
        send(next);
        return;
    }
    send_findings(findings, send);
    staging_limit limit;
    if (opened.kind == source_kind::archive && request.staging.archive_limit > 0) {
        limit.most_bytes = request.staging.archive_limit;
    }
    if (stage_parts(request, opened, profiles, limit, send)) {
        stage_names(request, opened, next_question, limit, send);
    }
}

int stage_source_of(const worker_request& request, const message_sender& send, const question_reader& next_question) {
    opened_source opened = open_source(QFile::encodeName(request.source_root), options_of(request.staging));
    if (opened.view) {
        stage_opened(request, opened, next_question, send);
        return exit_complete;
    }
    worker_message refused;
    refused.what = worker_message::refused;
    refused.text = words_of(opened);
    refused.number = exit_code_for(opened.refusal);
    send(refused);
    return exit_complete;
}

void allow_source_files(const worker_request& request, sandbox_plan& plan) {
    const QByteArray source = QFile::encodeName(request.source_root);
    if (QFileInfo(request.source_root).isDir()) {
        plan.readable.append(source);
        return;
    }
    plan.readable += source_files(source);
    plan.listable.append(source.left(source.lastIndexOf('/') + 1)); // segments stand beside each other
}

} // namespace

const worker_task staging_task{allow_source_files, stage_source_of};
