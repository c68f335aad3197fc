// SPDX-License-Identifier: MIT
// A survey as a table for people and as JSON for programs. Rules over values alone.
#pragma once

#include "host/batch/batch_survey.h"

namespace batch {

struct batch_sums {
    int done = 0;
    int done_with_failures = 0; // of the done ones
    int failed = 0;
    int running = 0;
    int waiting = 0;
    qint64 rows = 0;
    qint64 evidence_bytes = 0;
    qint64 milliseconds = 0; // of all done ones, one after the other

    qint64 bytes_per_second() const { return milliseconds > 0 ? evidence_bytes * 1000 / milliseconds : 0; }
};

batch_sums sums_of(const QVector<surveyed_source>& sources);
// The done ones that took longest, the longest first.
QVector<surveyed_source> slowest_of(const QVector<surveyed_source>& sources);

// Ready to print. The table shows the first of a long list, JSON all.
QString status_table(const QVector<surveyed_source>& sources);
QJsonObject status_object(const QVector<surveyed_source>& sources);

} // namespace batch
