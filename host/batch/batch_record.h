// SPDX-License-Identifier: MIT
// batch.json: what a batch did with one source and what came of it. Rules over values alone.
#pragma once

#include "host/batch/evidence_state.h"
#include "host/run/extract_options.h"

#include <QJsonObject>

namespace batch {

struct batch_record {
    QString id;
    evidence_state evidence;
    QString version;       // of the program
    QJsonObject arguments; // what can change the rows, see arguments_of()
    int exit_code = 0;
    QString reason; // of an exit code other than 0, in a sentence
    qint64 rows = 0;
    qint64 evidence_bytes = 0; // of the files that rows come from
    qint64 milliseconds = 0;   // of the whole run
    QString started;           // UTC
    QString host;              // that it ran on
    QString database_sha256;   // of the result database; empty: there is none
    QString links_sha256;      // of the links database; empty: there is none
};

// The source's part of the manifest and the options that rows may depend on.
QJsonObject arguments_of(const manifest_source& source, const extract_options& options);
// The options of one source's extraction, into the folder result; what the manifest says goes before.
extract_options options_for(const manifest_source& source, const extract_options& options, const QString& result);

// How the work that a record tells of differs from the wanted one: "the evidence", "version 1.0.0", "memory_limit", ...
// Empty: not at all.
QStringList differences(const batch_record& done, const batch_record& wanted);

// Takes rows, digests and reason from a run record (run.json).
void take_run_record(const QJsonObject& run, batch_record& record);
// The run record with the paths of what was written as they are once the folder from has become the folder to.
QJsonObject moved_run_record(QJsonObject run, const QString& from, const QString& to);

// Exit codes that a further attempt may better: a fault of the program, output that cannot be written, or a signal.
bool is_retryable(int exit_code);

QJsonObject to_json(const batch_record& record);
// False: it is no such record of a known format.
bool record_of(const QJsonObject& object, batch_record& record);

} // namespace batch
