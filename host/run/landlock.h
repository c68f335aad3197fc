// SPDX-License-Identifier: MIT
// Landlock through its system calls: rights on files, TCP and signals that a process gives up for good.
#pragma once

#include "host/run/sandbox.h"

struct landlock_outcome {
    protection result = protection::unavailable;
    int abi = 0;
    QString note; // empty when active
};

// Restricts the calling thread and those it starts later. Needs no_new_privs.
landlock_outcome apply_landlock(const QVector<QByteArray>& readable, const QVector<QByteArray>& writable,
                                const QVector<QByteArray>& listable = {});
