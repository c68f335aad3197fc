// SPDX-License-Identifier: MIT
// SIGINT and SIGTERM: the first cancels the running extraction, the second ends the process at once.
#pragma once

class host_interface;

// Holds both signals back in this thread and in those that it starts: threads of Qt's must never take them.
void hold_cancel_signals();
// Lets them through to this thread; call when Qt's own threads exist.
void take_cancel_signals();

// The number of the signal that asked to stop, 0 while none did.
int cancel_signal();
inline bool is_cancelled() {
    return cancel_signal() != 0;
}
// What a cancelled process ends with, as a shell would tell of it: 130 or 143.
inline int cancel_exit_code() {
    return 128 + cancel_signal();
}

// Names the plugin object that a signal is passed to, as long as this object lives.
class cancel_target {
public:
    explicit cancel_target(host_interface& plugin);
    ~cancel_target();
    cancel_target(const cancel_target&) = delete;
    cancel_target& operator=(const cancel_target&) = delete;
};
