// SPDX-License-Identifier: MIT
// A worker process: reads its request, confines itself, does its task. Workers alone touch evidence; the supervisor
// that started them does not.
#pragma once

#include "host/run/sandbox.h"
#include "host/run/worker_protocol.h"

#include <functional>
#include <optional>

// The word that makes a program a worker; the supervisor's process number follows it.
inline constexpr const char* worker_word = "worker-process";

// Waits for the next question, the paths that the worker is asked for. None: nothing will be asked any more.
using question_reader = std::function<std::optional<QVector<QByteArray>>()>;

// One kind of work.
struct worker_task {
    // Adds what the process may read and list beside the system's own; called before it is confined.
    void (*allow)(const worker_request& request, sandbox_plan& plan);
    // Called confined. Sends all messages but the last; returns the process's exit code, exit_complete when it came to
    // its end or was cancelled, else after it sent failure_message().
    int (*work)(const worker_request& request, const message_sender& send, const question_reader& next_question);
};

worker_message failure_message(const QString& text);

// Runs a worker from its request on standard input to its last message on standard output; call it before any Qt
// application object and any thread exists. Returns the process's exit code.
int run_worker(int argc, char** argv, const worker_task& task);
