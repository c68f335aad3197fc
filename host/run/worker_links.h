// SPDX-License-Identifier: MIT
// The worker's account of what reminders belong to, in a file of its own folder; the supervisor matches it with rows.
#pragma once

#include "host/run/worker_protocol.h"

// Tables that hold reminders, of those given.
QStringList reminder_tables(const QStringList& tables);

// Reads the Cortana databases of the request's accounts and writes worker_links(request.folder). False: it could not be
// written whole, or the run was cancelled; then there is no such file.
bool write_worker_links(const worker_request& request);
