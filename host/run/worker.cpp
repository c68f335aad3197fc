// SPDX-License-Identifier: MIT
// Order matters: the request is read, then the process confines itself, and only then comes the first byte of
// evidence, of the plugin library, or of Qt's own plugins.
#include "host/run/worker.h"

#include "host/console.h"
#include "host/environment.h"
#include "host/exit_codes.h"
#include "host/run/cancellation.h"
#include "host/run/process_limits.h"
#include "host/run/runtime_paths.h"

#include <QApplication>
#include <QFile>

#include <cerrno>
#include <cstdlib>
#include <fcntl.h>
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

// Fewer when the pipe ends before.
QByteArray bytes_from(int descriptor, int count) {
    QByteArray all(std::max(count, 0), '\0');
    int done = 0;
    for (ssize_t got = 0; done < all.size(); done += static_cast<int>(std::max<ssize_t>(got, 0))) {
        got = ::read(descriptor, all.data() + done, static_cast<size_t>(all.size() - done));
        if (got == 0 || (got < 0 && errno != EINTR)) {
            break;
        }
    }
    all.truncate(done);
    return all;
}

// The supervisor's ends of standard input and output, kept apart: what libraries print there must not look like a
// message.
class message_pipe {
public:
    message_pipe()
        : input(::fcntl(STDIN_FILENO, F_DUPFD_CLOEXEC, 3)), descriptor(::fcntl(STDOUT_FILENO, F_DUPFD_CLOEXEC, 3)) {
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

    std::optional<QVector<QByteArray>> next_question() const {
        const QByteArray length = line_from(input);
        return length.endsWith('\n') ? std::optional(paths_from(bytes_from(input, length.trimmed().toInt())))
                                     : std::nullopt;
    }

private:
    int input;
    int descriptor;
};

sandbox_state confine(const worker_request& request, const worker_task& task) {
    sandbox_plan plan;
    plan.landlock = plan.syscall_filter = request.sandbox;
    plan.readable = runtime_paths();
    task.allow(request, plan);
    if (!request.folder.isEmpty()) {
        plan.writable << QFile::encodeName(request.folder);
    }
    return confine_process(plan);
}

} // namespace

worker_message failure_message(const QString& text) {
    worker_message message;
    message.what = worker_message::failed;
    message.text = text;
    return message;
}

int run_worker(int argc, char** argv, const worker_task& task) {
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
    confined.sandbox = confine(request, task);
    pipe.send(confined);
    if (request.sandbox && confined.sandbox.has_failed()) {
        pipe.send(failure_message(QStringLiteral("the worker cannot be confined: ") + confined.sandbox.note));
        return exit_internal;
    }
    take_qt_messages(true); // Qt's remarks about a missing session are no concern of the user's
    int one = 1;
    char* only_program[] = {argv[0], nullptr};
    const QApplication application(one, only_program);
    settle_file_name_encoding();
    take_qt_messages(false);
    take_cancel_signals();
    const int code = task.work(
        request, [&pipe](const worker_message& message) { pipe.send(message); },
        [&pipe] { return pipe.next_question(); });
    if (code == exit_complete) {
        worker_message ended;
        ended.what = worker_message::ended;
        pipe.send(ended);
    }
    return code;
}
