// SPDX-License-Identifier: MIT
// The supervisor's side of one worker process: starts it, hears its messages, holds it to its limits.
#pragma once

#include "host/run/worker_limits.h"
#include "host/run/worker_protocol.h"

#include <QByteArray>
#include <QProcess>

#include <memory>

// Why a worker did not come to its end; the process is gone then.
struct worker_loss {
    QString reason;    // in words: a signal by its name, a limit; empty: it came to its end
    QString file;      // evidence that it had open, where that is known
    bool began = true; // false: the machine could not even start it
};

class worker_process : public QProcess {
    Q_OBJECT

public:
    worker_process(const worker_request& asked, const worker_limits& asked_limits);
    // Ends the process if it still runs.
    ~worker_process() override;

    void begin();
    // Of a worker that waits.
    void ask(const QVector<QByteArray>& paths) { write(question_of(paths)); }
    // Nothing will be asked any more: it ends.
    void end_questions() { closeWriteChannel(); }
    // Passes a cancel on; the worker commits what it has and ends.
    void cancel(int signal);
    // Ends the process when it has passed a limit.
    void hold_to_limits();
    // A step of it begins: limits of time count from now.
    void step_began();

Q_SIGNALS:
    void message_came(const worker_message& message);
    // The last signal of all.
    void worker_gone(const worker_loss& loss);

protected:
    void setupChildProcess() override;

private:
    void read_messages();
    void end_with(int code, QProcess::ExitStatus status);

    worker_request request;
    worker_limits limits;
    std::unique_ptr<worker_watch> watch;
    QByteArray unread;
    worker_loss killed_for;
    bool has_ended = false; // it said so
    bool is_gone = false;
};
