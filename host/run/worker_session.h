// SPDX-License-Identifier: MIT
// One worker process, run to its end beside an event loop of its own, held to its limits and told of a cancel.
#pragma once

#include "host/run/extract_options.h"
#include "host/run/worker_process.h"

#include <QEventLoop>
#include <QTimer>

#include <functional>

class worker_session {
public:
    // take hears each of its messages.
    worker_session(const worker_request& request, const extract_options& options,
                   const std::function<void(const worker_message& message)>& take);

    // Starts it. True: it waits to be asked; false: it is gone.
    bool run();
    // Starts it and returns; gone is called at its end, from the event loop of the caller.
    void start(const std::function<void()>& gone);
    // Of one that waits; settled is called when it waits again or is gone, from the event loop of the caller.
    void ask(const QVector<QByteArray>& paths, const std::function<void()>& settled);
    // Has one that waits end, and returns when it is gone.
    void end();
    // True: it can be asked.
    bool is_waiting() const { return waits && !is_gone; }
    // A step of it begins: limits of time count from now.
    void step_began() { worker.step_began(); }
    const worker_loss& loss() const { return lost; }

private:
    void look_round();
    void start_clock();
    void settle();

    worker_process worker;
    QEventLoop loop;
    QTimer clock;
    worker_loss lost;
    std::function<void()> settled = [] {};
    bool waits = false;
    bool is_gone = false;
    bool cancel_passed_on = false;
};
