// SPDX-License-Identifier: MIT
// Evidence records as JSON, for the run record and for a worker's messages.
#pragma once

#include "host/health/evidence_record.h"

#include <QJsonObject>

// Fields: path, kind, size, sha256, modified, accessed, changed, created (null where not told), problem, problems,
// notes, and ese or hive with what the check made out. docs/run_record.schema.json has them all.
QJsonObject to_json(const evidence_record& record);

// The record of such an object. A field that is missing or of another type counts as empty, a count below 0 as 0, and
// lists are cut to what a check keeps: the object comes from a worker.
evidence_record evidence_from(const QJsonObject& object);
