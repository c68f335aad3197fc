// SPDX-License-Identifier: MIT
// Order matters: the request is read, then the process confines itself, and only then comes the first byte of
// evidence, of the plugin library, or of Qt's own plugins.
#include "host/run/worker.h"

#include "host/console.h"
#include "host/environment.h"
#include "host/exit_codes.h"
#include "host/health/ese_probe.h"
#include "host/health/source_health.h"
#include "host/intake/newer_logs.h"
#include "host/run/cancellation.h"
#include "host/run/plugin_run.h"
#include "host/run/process_limits.h"
#include "host/run/runtime_paths.h"
#include "host/run/staging_worker.h"
#include "host/run/survey_worker.h"
#include "host/run/worker_links.h"
#include "host/run/worker_protocol.h"
#include "source/real_location.h"

#include <QApplication>
#include <QFile>
#include <QFileInfo>

#include <cerrno>
#include <cstdlib>
#include <fcntl.h>
#include <functional>
#include <unistd.h>

namespace {

// A pipe's next bytes to the end of a line, which is taken too, or to the pipe's end.
QByteArray line_from(int descriptor) {
    QByteArray line;
    char byte = 0;
    for (ssize_t got = 0; byte != '\n' && (got = ::read(descriptor, &byte, 1)) != 0;) {
        if (got < 0 && errno != EINTR) {
            break;
        }
        line.append(&byte, static_cast<int>(std::max<ssize_t>(got, 0)));
    }
    return line;
}

QByteArray rest_of(int descriptor) {
    QByteArray all;
    char part[65536];
    for (ssize_t got = 0; (got = ::read(descriptor, part, sizeof part)) != 0;) {
        if (got < 0 && errno != EINTR) {
            break;
        }
        all.append(part, static_cast<int>(std::max<ssize_t>(got, 0)));
    }
    return all;
}

// The supervisor's end of standard output, kept apart: what libraries print there must not look like a message.
class message_pipe {
public:
    message_pipe() : descriptor(::fcntl(STDOUT_FILENO, F_DUPFD_CLOEXEC, 3)) {
        const int nowhere = ::open("/dev/null", O_RDWR | O_CLOEXEC);
        ::dup2(nowhere, STDIN_FILENO);
        ::dup2(nowhere, STDOUT_FILENO);
        ::close(nowhere);
    }
    void send(const worker_message& message) const {
        const QByteArray line = to_line(message);
        for (int sent = 0; sent < line.size();) {
            const ssize_t wrote = ::write(descriptor, line.constData() + sent, static_cast<size_t>(line.size() - sent));
            if (wrote < 0 && errno != EINTR) {
                return; // the supervisor is gone, and this process with it
            }
            sent += static_cast<int>(std::max<ssize_t>(wrote, 0));
        }
    }
    void send_failure(const QString& text) const {
        worker_message message;
        message.what = worker_message::failed;
        message.text = text;
        send(message);
    }

private:
    int descriptor;
};

sandbox_state confine(const worker_request& request) {
    sandbox_plan plan;
    plan.landlock = plan.syscall_filter = request.sandbox;
    plan.readable = runtime_paths();
    if (request.staging.wanted) {
        allow_source_files(request, plan);
    } else {
        plan.readable << QFile::encodeName(request.source_root);
    }
    if (!request.library.isEmpty()) {
        plan.readable << QFile::encodeName(QFileInfo(request.library).path());
    }
    if (!request.folder.isEmpty()) {
        plan.writable << QFile::encodeName(request.folder);
    }
    return confine_process(plan);
}

worker_message check(const worker_request& request, const message_pipe& pipe) {
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
        pipe.send(seen);
        if (record.health.ese && record.health.problem.isEmpty()) {
            databases.append(record);
        }
    };
    source_health health(root, request.checked_tables, cancelled, message.health, pass_on);
    for (const system_account& account : request.accounts) {
        health.check_account(account);
    }
    message.what = worker_message::looked_over; // libesedb may end this process: what is known is told first
    pipe.send(message);
    for (const evidence_record& database : qAsConst(databases)) {
        probe_ese_database(database, request.checked_tables, cancelled, message.health);
    }
    message.what = worker_message::checked;
    return message;
}

// Passes the plugin's signals on as messages.
class message_relay : public plugin_listener {
public:
    explicit message_relay(const message_pipe& pipe) : out(pipe) {}
    void rows_written(qint64 rows) override { tell(worker_message::rows, rows); }
    void steps_done(int steps) override { tell(worker_message::step_done, steps); }

private:
    void tell(worker_message::kind what, qint64 number) const {
        worker_message message;
        message.what = what;
        message.number = number;
        out.send(message);
    }
    const message_pipe& out;
};

int work(const worker_request& request, const message_pipe& pipe) {
    const message_sender send = [&](const worker_message& message) { pipe.send(message); };
    if (request.staging.wanted) {
        stage_source_of(
            request, [] { return paths_from(rest_of(STDIN_FILENO)); }, send);
    }
    if (request.survey) {
        survey_staged(request, send);
    }
    if (request.check) {
        pipe.send(check(request, pipe));
    }
    if (!request.tables.isEmpty()) {
        const plugin_library library = load_plugin_library(request.library);
        if (library.create == nullptr) {
            pipe.send_failure(QStringLiteral("the plugin cannot be loaded: ") + library.reason);
            return exit_internal;
        }
        message_relay relay(pipe);
        run_plugin(library, request, relay);
    }
    if (request.link && !is_cancelled() && write_worker_links(request)) {
        worker_message linked;
        linked.what = worker_message::linked;
        pipe.send(linked);
    }
    worker_message ended;
    ended.what = worker_message::ended;
    pipe.send(ended);
    return exit_complete;
}

} // namespace

int run_worker(int argc, char** argv) {
    const pid_t supervisor = argc > 2 ? static_cast<pid_t>(std::atol(argv[2])) : 0;
    if (supervisor <= 0 || !die_with_parent(supervisor)) {
        say(QStringLiteral("a worker is started by cortana itself"));
        return exit_usage;
    }
    forbid_core_files();
    be_ended_first();
    const worker_request request = request_from(line_from(STDIN_FILENO));
    const message_pipe pipe;
    worker_message confined;
    confined.what = worker_message::confined;
    confined.sandbox = confine(request);
    pipe.send(confined);
    if (request.sandbox && confined.sandbox.has_failed()) {
        pipe.send_failure(QStringLiteral("the worker cannot be confined: ") + confined.sandbox.note);
        return exit_internal;
    }
    take_qt_messages(true); // Qt's remarks about a missing session are no concern of the user's
    int one = 1;
    char* only_program[] = {argv[0], nullptr};
    const QApplication application(one, only_program);
    settle_file_name_encoding();
    take_qt_messages(false);
    take_cancel_signals();
    return work(request, pipe);
}
