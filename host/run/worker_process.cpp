// SPDX-License-Identifier: MIT
// A worker is in a process group of its own, so that a terminal's Ctrl-C reaches the supervisor only, which passes it
// on once.
#include "host/run/worker_process.h"

#include "host/run/cancellation.h"
#include "host/run/program_files.h"
#include "host/run/worker.h"

#include <QCoreApplication>
#include <QProcessEnvironment>

#include <csignal>
#include <cstring>
#include <unistd.h>

namespace {

QString signal_name(int number) {
    const char* const name = ::sigabbrev_np(number);
    return name != nullptr ? QStringLiteral("SIG%1 (%2)").arg(QLatin1String(name), QLatin1String(::strsignal(number)))
                           : QString::number(number);
}

} // namespace

worker_process::worker_process(const worker_request& asked, const worker_limits& asked_limits)
    : request(asked), limits(asked_limits) {
    setProcessChannelMode(QProcess::ForwardedErrorChannel);
    connect(this, &QProcess::readyReadStandardOutput, this, &worker_process::read_messages);
    connect(this, QOverload<int, QProcess::ExitStatus>::of(&QProcess::finished), this, &worker_process::end_with);
    connect(this, &QProcess::errorOccurred, this, [this](QProcess::ProcessError error) {
        if (error == QProcess::FailedToStart) {
            killed_for.reason = QStringLiteral("the worker could not be started: ") + errorString();
            killed_for.began = false;
            end_with(0, QProcess::CrashExit);
        }
    });
}

worker_process::~worker_process() {
    is_gone = true; // nobody is told any more
    if (state() != QProcess::NotRunning) {
        kill();
        waitForFinished(-1);
    }
}

void worker_process::begin() {
    if (request.staging.wanted) { // an archive's library takes times without a zone in its own
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.insert(QStringLiteral("TZ"), QStringLiteral("UTC"));
        setProcessEnvironment(environment);
    }
    start(request.staging.wanted ? program_file(QStringLiteral("cortana-stage"))
                                 : QCoreApplication::applicationFilePath(),
          {QLatin1String(worker_word), QString::number(QCoreApplication::applicationPid())});
    watch =
        std::make_unique<worker_watch>(static_cast<pid_t>(processId()),
                                       request.folder.isEmpty() ? QString() : worker_database(request.folder), limits);
    write(to_bytes(request));
    if (!request.staging.wanted) {
        closeWriteChannel();
    }
}

void worker_process::setupChildProcess() {
    ::setpgid(0, 0);
    hold_cancel_signals(); // a cancel that comes before the worker can take it waits for it
}

void worker_process::cancel(int signal) {
    if (processId() > 0) {
        ::kill(static_cast<pid_t>(processId()), signal);
    }
}

void worker_process::step_began() {
    watch->step_began();
}

void worker_process::hold_to_limits() {
    if (processId() <= 0 || !killed_for.reason.isEmpty()) {
        return;
    }
    killed_for.reason = watch->passed_limit();
    if (!killed_for.reason.isEmpty()) {
        killed_for.file = open_evidence_of(static_cast<pid_t>(processId()), request.source_root);
        kill();
    }
}

void worker_process::read_messages() {
    constexpr int longest_line = 4 * 1024 * 1024; // 2,000 findings with paths of PATH_MAX bytes fit
    unread += readAllStandardOutput();
    for (int end = unread.indexOf('\n'); end >= 0; end = unread.indexOf('\n')) {
        const worker_message message = message_from(unread.left(end));
        unread.remove(0, end + 1);
        has_ended = has_ended || message.what == worker_message::ended || message.what == worker_message::failed;
        watch->heard();
        Q_EMIT message_came(message);
    }
    if (unread.size() > longest_line && killed_for.reason.isEmpty()) {
        killed_for.reason = QStringLiteral("it said what no worker says");
        kill();
    }
}

void worker_process::end_with(int code, QProcess::ExitStatus status) {
    if (is_gone) {
        return;
    }
    is_gone = true;
    read_messages();
    worker_loss loss = killed_for;
    if (loss.reason.isEmpty() && status == QProcess::CrashExit) {
        loss.reason = QStringLiteral("killed by ") + signal_name(code); // QProcess tells the signal as the code
    } else if (loss.reason.isEmpty() && !has_ended) {
        loss.reason = QStringLiteral("it ended early with exit code %1").arg(code);
    }
    Q_EMIT worker_gone(loss);
}
