// SPDX-License-Identifier: MIT
// libesedb may end this process at any database: what is known without it is told first.
#include "host/run/profile_worker.h"

#include "host/exit_codes.h"
#include "host/health/ese_probe.h"
#include "host/health/source_health.h"
#include "host/intake/newer_logs.h"
#include "host/run/cancellation.h"
#include "host/run/plugin_run.h"
#include "host/run/survey_worker.h"
#include "host/run/worker_links.h"
#include "source/real_location.h"

#include <QFile>
#include <QFileInfo>

#include <functional>

namespace {

void allow(const worker_request& request, sandbox_plan& plan) {
    plan.readable << QFile::encodeName(request.source_root);
    if (!request.library.isEmpty()) { // else it would be the working directory
        plan.readable << QFile::encodeName(QFileInfo(request.library).path());
    }
}

worker_message check(const worker_request& request, const message_sender& send) {
    worker_message message;
    const QByteArray root = real_location(QFile::encodeName(request.source_root));
    const std::function<bool()> cancelled = is_cancelled;
    QVector<evidence_record> databases;
    const auto pass_on = [&](const evidence_record& record) {
        worker_message seen;
        seen.what = worker_message::evidence;
        seen.record = record;
        if (record.health.hive) {
            seen.record.health.notes += newer_log_notes(QFile::encodeName(record.path));
        }
        for (const QString& note : seen.record.health.notes.mid(record.health.notes.size())) {
            message.health.add_note(record.path, note);
        }
        send(seen);
        if (record.health.ese && record.health.problem.isEmpty()) {
            databases.append(record);
        }
    };
    source_health health(root, request.checked_tables, cancelled, message.health, pass_on);
    for (const system_account& account : request.accounts) {
        health.check_account(account);
    }
    message.what = worker_message::looked_over;
    send(message);
    for (const evidence_record& database : qAsConst(databases)) {
        probe_ese_database(database, request.checked_tables, cancelled, message.health);
    }
    message.what = worker_message::checked;
    return message;
}

// Passes the plugin's signals on as messages.
class message_relay : public plugin_listener {
public:
    explicit message_relay(const message_sender& sender) : send(sender) {}
    void rows_written(qint64 rows) override { tell(worker_message::rows, rows); }
    void steps_done(int steps) override { tell(worker_message::step_done, steps); }

private:
    void tell(worker_message::kind what, qint64 number) const {
        worker_message message;
        message.what = what;
        message.number = number;
        send(message);
    }
    const message_sender& send;
};

int work(const worker_request& request, const message_sender& send, const question_reader& /*waits for nothing*/) {
    if (request.survey) {
        survey_staged(request, send);
    }
    if (request.check) {
        send(check(request, send));
    }
    if (!request.tables.isEmpty()) {
        const plugin_library library = load_plugin_library(request.library);
        if (library.create == nullptr) {
            send(failure_message(QStringLiteral("the plugin cannot be loaded: ") + library.reason));
            return exit_internal;
        }
        message_relay relay(send);
        run_plugin(library, request, relay);
    }
    if (request.link && !is_cancelled() && write_worker_links(request)) {
        worker_message linked;
        linked.what = worker_message::linked;
        send(linked);
    }
    return exit_complete;
}

} // namespace

const worker_task profile_task{allow, work};
