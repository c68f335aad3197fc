// SPDX-License-Identifier: MIT
// Has workers look into staged copies for what no row can tell: which searches come from a hive's logs alone.
#pragma once

#include "host/run/extract_options.h"
#include "host/run/worker_protocol.h"

#include <vector>

struct survey_outcome {
    QByteArray profile;
    health_report findings; // by the paths of copies, below the staging folder
    QString loss;           // why its worker did not come to its end; empty: it did
};

// One worker a profile, as many at once as asked; those that a cancel kept from starting are left out. staging: as the
// copies were asked for. Returns when all are gone.
std::vector<survey_outcome> survey_profiles(const QVector<QByteArray>& profiles, const worker_request& staging,
                                            const extract_options& options);
