// SPDX-License-Identifier: MIT
// The frame shared by all extractors: start line, connection and transaction, rows, commit, end line. An extractor
// gives its texts and statement as a step_texts, its bindings as an array, and a body that walks its sources.
#pragma once

#include "result_db/insert_session.h"

#include <QString>
#include <QVariant>
#include <QVector>

#include <functional>

// What a step uses of the Windows front. All texts outlive the step.
struct step_context {
    const QString& fs_extraction_source_path; // the source root, ending in "/"
    const QString& os_scheme_display;
    const QString& destination_db_path;
    const QString& location_kind;         // always empty on Windows
    const bool& bool_cancel_extraction;   // set from the host's side at any time
    std::function<void()> count_inserted; // to be called after each successful insert (count and progress signal)
};

// The lines of a failed insert: the message (with the database's name behind it or not), the driver's error text and
// the executed query, the latter two behind their prefixes.
struct insert_failure_lines {
    const char* message;
    bool names_database;
    const char* error_prefix;
    const char* query_prefix;
};

// Whether the running record count is to be told again: more than a second after the timer (a QElapsedTimer) was last
// started. If so, it is started again.
template <class Timer>
bool take_progress(Timer& timer) {
    constexpr qint64 signal_interval_ms = 1000;
    if (timer.elapsed() <= signal_interval_ms) {
        return false;
    }
    timer.start();
    return true;
}

// A step's fixed texts, each whole and exactly as it is logged or executed.
struct step_texts {
    const char* function; // full signature text; also the name of the database connection
    const char* started;
    const char* opening_failed; // the database path follows it directly
    const char* ended;
    insert_failure_lines insert_failed;
    const char* statement;
};

// A running step, handed to the body.
class step_run {
public:
    step_run(const step_context& step, const step_texts& texts_of_step, insert_session& open_session);
    const step_context& context;
    // Whether the host wants no more. A step that once saw so logs no end line.
    bool cancelled() { return seen_cancelled = seen_cancelled || context.bool_cancel_extraction; }
    bool has_seen_cancel() const { return seen_cancelled; }
    // Logs with the step's function text.
    void log(const QString& message) const;
    // Inserts one row; a failure is logged with the step's texts and the row is skipped.
    void insert(const QVector<QVariant>& values);
    void log_insert_failure() const;

private:
    const step_texts& texts;
    insert_session& session;
    QString statement;
    bool seen_cancelled = false;
};

// Runs a step. The body asks cancelled() before each source, each record and each row, and after each read of a table,
// and returns when it is true: what was written is committed, and there is no end line. When the result database does
// not open, two lines are logged and the body is not called.
void run_step(const step_context& context, const step_texts& texts, const std::function<void(step_run&)>& body);

// One bound value of an insert: the column it goes to (for the reader, in statement order) and how a row gives it.
template <class Row>
struct binding {
    const char* column;
    QVariant (*value)(const Row& row);
};

template <class Row>
using bindings = QVector<binding<Row>>;

template <class Row>
QVector<QVariant> bound_values(const bindings<Row>& columns, const Row& row) {
    QVector<QVariant> values;
    values.reserve(columns.size());
    for (const binding<Row>& column : columns) {
        values.append(column.value(row));
    }
    return values;
}
