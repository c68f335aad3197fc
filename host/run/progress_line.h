// SPDX-License-Identifier: MIT
// Receives the plugin's two signals and shows them as one line on standard error, rewritten in place.
#pragma once

#include <QElapsedTimer>
#include <QObject>
#include <QStringList>

class progress_line : public QObject {
    Q_OBJECT

public:
    // tables: the selected ones in the plugin's order. shown: draw anything at all (standard error is a terminal).
    progress_line(const QStringList& tables, bool shown);

    // A run of the plugin begins; the label says for which profile.
    void begin_run(const QString& label);
    // The records that the plugin told of in this run, last of all.
    qint64 records() const { return record_count; }
    // Takes the line off the terminal.
    void clear();

public Q_SLOTS:
    void records_changed(qint64 records);
    void tables_changed(int done);

private:
    void draw();

    QStringList table_names;
    bool is_shown;
    QString run_label;
    qint64 record_count = 0;
    int tables_done = 0;
    QElapsedTimer elapsed;
};
