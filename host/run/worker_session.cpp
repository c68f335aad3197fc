// SPDX-License-Identifier: MIT
// While a worker waits no limit of time runs.
#include "host/run/worker_session.h"

#include "host/run/cancellation.h"

#include <utility>

worker_session::worker_session(const worker_request& request, const extract_options& options,
                               const std::function<void(const worker_message& message)>& take)
    : worker(request, options.limits) {
    QObject::connect(&worker, &worker_process::message_came, &loop, [this, take](const worker_message& message) {
        take(message);
        if (message.what == worker_message::waiting) {
            waits = true;
            settle();
        }
    });
    QObject::connect(&worker, &worker_process::worker_gone, &loop, [this](const worker_loss& loss) {
        lost = loss;
        is_gone = true;
        settle();
    });
    QObject::connect(&clock, &QTimer::timeout, &loop, [this] { look_round(); });
}

void worker_session::start_clock() {
    constexpr int look_round_ms = 50;
    clock.start(look_round_ms);
}

void worker_session::settle() {
    clock.stop();
    loop.quit();
    const std::function<void()> told = std::exchange(settled, [] {});
    told();
}

void worker_session::start(const std::function<void()>& gone) {
    settled = gone;
    start_clock();
    worker.begin();
}

bool worker_session::run() {
    start_clock();
    QTimer::singleShot(0, &loop, [this] { worker.begin(); });
    loop.exec();
    return is_waiting();
}

void worker_session::ask(const QVector<QByteArray>& paths, const std::function<void()>& then) {
    waits = false;
    settled = then;
    start_clock();
    worker.step_began();
    worker.ask(paths);
}

void worker_session::end() {
    waits = false;
    start_clock();
    worker.step_began();
    worker.end_questions();
    loop.exec();
}

void worker_session::look_round() {
    if (is_cancelled() && !cancel_passed_on) {
        worker.cancel(cancel_signal());
        cancel_passed_on = true;
    }
    worker.hold_to_limits();
}
