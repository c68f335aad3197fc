// SPDX-License-Identifier: MIT
// How far the sources of a batch are, told by what lies in the folder of the results. Disturbs no run.
#pragma once

#include "host/batch/batch_record.h"
#include "host/batch/manifest.h"
#include "host/batch/out_folder.h"

namespace batch {

enum class source_state { done, failed, running, waiting };

struct surveyed_source {
    manifest_source source;
    source_state state = source_state::waiting;
    batch_record record; // of done ones; of failed ones where the attempt left it
    QString reason;      // of failed ones, and of done ones with an exit code other than 0; of running ones the holder
    bool retryable = false; // of failed ones
};

struct batch_survey {
    QString error;                    // why there is none; else empty
    QVector<surveyed_source> sources; // in the manifest's order
};

batch_survey survey_of(const QString& out);

} // namespace batch
