// SPDX-License-Identifier: MIT
// What a worker does that stages: opens the source as what it is, copies what is wanted of it, applies hives' logs.
#pragma once

#include "host/run/worker_protocol.h"

// Call it confined: hostile bytes go through image and archive libraries here. Sends all but the last message.
// asked_for: waits for the paths that rows name; called when everything else is done.
void stage_source_of(const worker_request& request, const std::function<QVector<QByteArray>()>& asked_for,
                     const message_sender& send);

// Files that the worker has to open, and the folder whose names it has to know. Reads the begin and the end of the
// files; call it before the process is confined.
void allow_source_files(const worker_request& request, sandbox_plan& plan);
