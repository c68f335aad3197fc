// SPDX-License-Identifier: MIT
// Works on whole records: a path with a line break in it spans several lines of a plain log.
#include "host/record/log_findings.h"

#include "contract/log_marks.h"
#include "host/record/log_reader.h"

#include <QFile>

#include <algorithm>
#include <iterator>

namespace {

// SQLite's words when it is the result folder's fault.
bool is_output_trouble(const QString& message) {
    for (const char* const words :
         {"database or disk is full", "disk I/O error", "attempt to write a readonly database",
          "unable to open database file", "database is locked", "file is not a database", "disk image is malformed"}) {
        if (message.contains(QLatin1String(words))) {
            return true;
        }
    }
    return false;
}

constexpr int most_kept = 10; // messages of failures

void take_message(const QString& message, log_findings& findings) {
    const QLatin1String found_source(log_mark::found_source);
    if (message.startsWith(found_source)) {
        findings.found_sources.append(message.mid(found_source.size()));
        return;
    }
    if (message == QLatin1String(log_mark::extraction_ended)) {
        ++findings.ended_runs;
    }
    if (findings.output_trouble.isEmpty() && is_output_trouble(message)) {
        findings.output_trouble = message;
    }
    if (is_failure(message)) {
        ++findings.failures;
        if (findings.first_failures.size() < most_kept) {
            findings.first_failures.append(message);
        }
    }
}

void take_record(QByteArray record, log_findings& findings) {
    if (record.endsWith('\n')) {
        record.chop(1);
    }
    const int message = record.indexOf("]:-- ");
    if (is_line_start(record) && message >= 0) {
        take_message(QString::fromUtf8(record.mid(message + 5)), findings);
    }
}

} // namespace

void log_findings::add(const log_findings& later) {
    failures += later.failures;
    first_failures = (first_failures + later.first_failures).mid(0, most_kept);
    found_sources += later.found_sources;
    found_sources.removeDuplicates();
    output_trouble = output_trouble.isEmpty() ? later.output_trouble : output_trouble;
    ended_runs += later.ended_runs;
}

bool is_failure(const QString& message) {
    if (message.startsWith(QLatin1String(log_mark::found_source)) ||
        message.startsWith(QLatin1String(log_mark::table_creation_failed))) {
        return false;
    }
    return std::any_of(std::begin(log_mark::failures), std::end(log_mark::failures),
                       [&](const char* mark) { return message.contains(QLatin1String(mark)); });
}

bool read_log(const QString& file, qint64 offset, log_findings& findings) {
    QFile log(file);
    if (!log.open(QIODevice::ReadOnly) || !log.seek(offset)) {
        return false;
    }
    log_reader reader(log);
    log_piece piece;
    QByteArray record;
    while (reader.next(piece)) {
        const bool goes_on = piece.what == log_piece::plain && !is_line_start(piece.text);
        if (!goes_on) {
            take_record(record, findings);
            record.clear();
        }
        if (piece.what == log_piece::broken) {
            take_message(QStringLiteral("FAILED to decipher record %1 of this run's log").arg(piece.number), findings);
        }
        record += piece.text;
    }
    take_record(record, findings);
    return log.error() == QFileDevice::NoError;
}
