// SPDX-License-Identifier: MIT
// What a worker does that stages: opens the source as what it is, copies what is wanted of it, applies hives' logs. It
// is a program of its own, because the libraries that read images bring three dozen others along, which every other
// process would have to load.
#pragma once

#include "host/run/worker.h"

// Opens of the source what it needs: the begin and the end of the files are read before the process is confined.
extern const worker_task staging_task;
