// SPDX-License-Identifier: MIT
// What supervisor and worker tell each other: one JSON document as the first line of the worker's standard input, then
// a line a message on the worker's standard output. A worker that waits reads on: one question after the other, until
// there is none. A worker has read evidence, so nothing that it says is believed without a look.
#pragma once

#include "contract/host_records.h"
#include "host/health/evidence_record.h"
#include "host/health/health_report.h"
#include "host/intake/staging.h"
#include "host/run/sandbox.h"

#include <QByteArray>
#include <QList>
#include <QString>
#include <QStringList>

#include <functional>

// The source as it was given is opened, and what is wanted of it is copied into the worker's folder; such a worker does
// nothing else, and the accounts are those that were asked for, none for every profile. Then it waits to be asked for
// files that evidence names elsewhere (see question_of), makes empty ones of those that exist, and waits again.
struct staging_request {
    bool wanted = false;
    QString type; // "folder", "image", "archive"; empty: told by content
    int volume = 0;
    qint64 archive_limit = 0; // bytes that are unpacked; 0: the usual limits
    bool hive_logs = true;    // are applied to the copies of unfinished hives
};

// A file or folder that was staged.
struct staged_file {
    evidence_record record;     // as it is in the source
    intake::staged_entry entry; // of the copy
};

// What one worker is to do. Paths are absolute.
struct worker_request {
    QString source_root; // ending in "/"
    QList<system_account> accounts;
    bool check = false; // look over the evidence that the checked tables come from, before any step
    QStringList checked_tables;
    QStringList tables;  // to fill, in the plugin's order; empty: none
    bool survey = false; // tell which searches of the staged hives are in their logs only (see survey_worker.h)
    bool link = false;   // then tell what reminders belong to, in worker_links()
    QString folder;      // the worker's own, the only place where it may write; empty: nothing is written
    QString library;
    QString os_scheme;
    int source_number = 1;
    bool log_terminal = false;
    bool encipher_log = false;
    bool sandbox = true;
    staging_request staging;
};

QByteArray to_bytes(const worker_request& request); // one line
worker_request request_from(const QByteArray& bytes);

// What a waiting worker is asked: a line with the number of bytes that follow it, then each path and a zero byte.
QByteArray question_of(const QVector<QByteArray>& paths);
// From the bytes behind the line.
QVector<QByteArray> paths_from(const QByteArray& bytes);

// Where a worker's results lie in its folder.
QString worker_database(const QString& folder);
QString worker_log(const QString& folder);
QString worker_links(const QString& folder);

// One message of a worker.
struct worker_message {
    enum kind {
        unknown,
        confined,    // sandbox
        evidence,    // record: a file that was looked at
        looked_over, // health: as far as it is known without libesedb
        checked,     // health: all of it
        planned,     // paths: of the source, to be copied
        staged,      // file: one that stands in the staging folder now, or is another than was told of
        waiting,     // it did what it was asked and reads the next question
        as_given,    // the source can be read as it stands, nothing was staged
        refused,     // text: why the source cannot be opened; number: an exit code
        rows,        // number: rows so far
        step_done,   // number: steps done so far
        linked,      // what it has to tell of reminders is written
        failed,      // text: why it can do nothing
        ended,       // it did all that it was asked to, or was cancelled
    };
    kind what = unknown;
    qint64 number = 0;
    QString text;
    sandbox_state sandbox;
    evidence_record record;
    health_report health;
    staged_file file;
    QVector<QByteArray> paths;
};

using message_sender = std::function<void(const worker_message& message)>;

QByteArray to_line(const worker_message& message);
// A line that is no message gives one of kind unknown. Counts are never negative, and lists as long as their holders
// keep at the most.
worker_message message_from(const QByteArray& line);
