// SPDX-License-Identifier: MIT
// By what a batch tells that a source is still the one that it was.
#pragma once

#include "host/batch/manifest.h"

#include <QJsonObject>

namespace batch {

struct evidence_state {
    QString path;     // as in the manifest
    int files = 0;    // segments of an image; 1 of a folder
    qint64 size = 0;  // bytes of all of them; 0 of a folder
    QString modified; // UTC with nanoseconds, the latest of them; of a folder its own and that of Users
    QString sha256;   // as in the manifest
};

// Looks at names, sizes and times, and at the first and last bytes of a file. Needs the source's path only. False: it
// cannot be looked at, problem says why.
bool look_at_evidence(const manifest_source& source, evidence_state& state, QString& problem);

// Two digests decide alone; else path, size and time have to be the same.
bool is_same_evidence(const evidence_state& one, const evidence_state& other);

QJsonObject to_json(const evidence_state& state);
evidence_state evidence_state_of(const QJsonObject& object); // what is missing counts as empty

} // namespace batch
