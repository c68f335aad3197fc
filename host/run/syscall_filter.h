// SPDX-License-Identifier: MIT
// A filter of system calls (seccomp) that leaves what the plugin's libraries need.
#pragma once

#include "host/run/sandbox.h"

struct filter_outcome {
    protection result = protection::failed;
    QString note; // empty when active
};

// Filters the calling thread and those it starts later. Needs no_new_privs.
filter_outcome apply_syscall_filter();
