// SPDX-License-Identifier: MIT
// The worker process: confines itself, looks over the evidence of its accounts, and drives the plugin over it into a
// database of its own. It alone touches evidence; the supervisor that started it does not.
#pragma once

// The word that makes the program a worker; the supervisor's process number follows it.
inline constexpr const char* worker_word = "worker-process";

// Runs a worker from its request on standard input to its last message on standard output; call it before any Qt
// application object and any thread exists. Returns the process's exit code.
int run_worker(int argc, char** argv);
