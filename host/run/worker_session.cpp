// SPDX-License-Identifier: MIT
// While a worker waits no limit of time runs.
#include "host/run/worker_session.h"

#include "host/run/cancellation.h"

worker_session::worker_session(const worker_request& request, const extract_options& options,
                               const std::function<void(const worker_message& message)>& take)
    : worker(request, options.limits) {
    QObject::connect(&worker, &worker_process::message_came, &loop, [this, take](const worker_message& message) {
        take(message);
        if (message.what == worker_message::waiting) {
            waits = true;
            loop.quit();
        }
    });
    QObject::connect(&worker, &worker_process::worker_gone, &loop, [this](const worker_loss& loss) {
        lost = loss;
        is_gone = true;
        loop.quit();
    });
    QObject::connect(&clock, &QTimer::timeout, &loop, [this] { look_round(); });
}

bool worker_session::run() {
    constexpr int look_round_ms = 50;
    waits = false;
    clock.start(look_round_ms);
    if (!has_begun) {
        has_begun = true;
        QTimer::singleShot(0, &loop, [this] { worker.begin(); });
    } else if (!is_gone) {
        worker.step_began();
    }
    if (!is_gone) {
        loop.exec();
    }
    clock.stop();
    return waits && !is_gone;
}

void worker_session::look_round() {
    if (is_cancelled() && !cancel_passed_on) {
        worker.cancel(cancel_signal());
        cancel_passed_on = true;
    }
    worker.hold_to_limits();
}
