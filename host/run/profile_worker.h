// SPDX-License-Identifier: MIT
// What the worker of a profile does: looks over the evidence of its accounts, drives the plugin over it into a database
// of its own, and tells what reminders belong to.
#pragma once

#include "host/run/worker.h"

extern const worker_task profile_task;
