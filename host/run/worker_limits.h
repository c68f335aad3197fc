// SPDX-License-Identifier: MIT
// How much a worker may take of the machine, and the watch over it from outside.
#pragma once

#include <QElapsedTimer>
#include <QString>

#include <sys/types.h>

// What a step that passes one of them costs is that step.
struct worker_limits {
    qint64 silence_seconds = 600;                   // without rows, signals or bytes read or written
    qint64 step_seconds = 3600;                     // for a step as a whole
    qint64 memory = qint64{2} * 1024 * 1024 * 1024; // bytes that it holds; address space does not count
    qint64 output = qint64{4} * 1024 * 1024 * 1024; // bytes of its database
};

// Watches one process. All is read from /proc and from the size of its database; the process is not asked.
class worker_watch {
public:
    // database: the file that it writes, which need not exist; empty for none.
    worker_watch(pid_t watched, const QString& database_file, const worker_limits& watched_limits);

    // A step of it begins.
    void step_began();
    // It told something.
    void heard() { silence.start(); }
    // Which limit it has passed, in words; an empty text while it has passed none.
    QString passed_limit();

private:
    qint64 bytes_moved() const;
    qint64 database_size() const;

    pid_t process;
    QByteArray database;
    worker_limits limits;
    QElapsedTimer silence;
    QElapsedTimer step;
    qint64 moved = -1; // bytes read and written when last looked at
};

// Evidence files that a process has open below the root, the first one; empty for none.
QString open_evidence_of(pid_t process, const QString& source_root);
