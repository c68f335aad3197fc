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

    // Starts it, or lets it go on after an answer. True: it waits for one; false: it is gone.
    bool run();
    void answer(const QByteArray& bytes) { worker.answer(bytes); }
    // A step of it begins: limits of time count from now.
    void step_began() { worker.step_began(); }
    const worker_loss& loss() const { return lost; }

private:
    void look_round();

    worker_process worker;
    QEventLoop loop;
    QTimer clock;
    worker_loss lost;
    bool has_begun = false;
    bool waits = false;
    bool is_gone = false;
    bool cancel_passed_on = false;
};
