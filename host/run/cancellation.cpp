// SPDX-License-Identifier: MIT
// The handler runs on the thread that drives the plugin, and pub_cancel_extraction only sets flags.
#include "host/run/cancellation.h"

#include "contract/host_interface.h"

#include <atomic>
#include <csignal>
#include <unistd.h>

namespace {

std::atomic<int> received{0};
std::atomic<host_interface*> target{nullptr};
static_assert(std::atomic<int>::is_always_lock_free && std::atomic<host_interface*>::is_always_lock_free,
              "a signal handler may only use lock-free values");

void on_signal(int number) {
    if (received != 0) {
        ::_exit(128 + number);
    }
    received = number;
    if (host_interface* const plugin = target) {
        plugin->pub_cancel_extraction();
    }
}

sigset_t both_signals() {
    sigset_t set;
    sigemptyset(&set);
    sigaddset(&set, SIGINT);
    sigaddset(&set, SIGTERM);
    return set;
}

} // namespace

void hold_cancel_signals() {
    const sigset_t set = both_signals();
    pthread_sigmask(SIG_BLOCK, &set, nullptr);
}

void take_cancel_signals() {
    struct sigaction action = {};
    action.sa_handler = on_signal;
    action.sa_mask = both_signals();
    action.sa_flags = SA_RESTART;
    for (const int number : {SIGINT, SIGTERM}) {
        struct sigaction inherited = {};
        sigaction(number, nullptr, &inherited);
        if (inherited.sa_handler != SIG_IGN) { // a shell's background job or nohup asked not to be interrupted
            sigaction(number, &action, nullptr);
        }
    }
    const sigset_t set = both_signals();
    pthread_sigmask(SIG_UNBLOCK, &set, nullptr);
}

int cancel_signal() {
    return received;
}

cancel_target::cancel_target(host_interface& plugin) {
    target = &plugin;
}

cancel_target::~cancel_target() {
    target = nullptr;
}
