// SPDX-License-Identifier: MIT
// What a worker does that surveys the staged copies of a profile: which searches of a hive come from its transaction
// logs alone, and which the logs remove.
#pragma once

#include "host/run/worker_protocol.h"

// Call it confined: parsers of others read evidence here. The request's root is the staging folder, its accounts are
// the profiles, its checked tables those whose rows are meant. Sends "checked"; the findings' paths are those of
// copies, below the staging folder.
void survey_staged(const worker_request& request, const message_sender& send);
