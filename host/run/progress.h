// SPDX-License-Identifier: MIT
// How far all workers are: one line on a terminal, rewritten in place, or JSON lines for programs. Written to standard
// error.
#pragma once

#include <QElapsedTimer>
#include <QMap>
#include <QString>

enum class progress_form { none, terminal_line, json_lines };

// What one profile's worker does now.
struct profile_progress {
    QString profile;
    QString table; // empty: it looks over the evidence
    qint64 rows = 0;
    bool running = false;
};

class run_progress {
public:
    // all: profiles of the run.
    run_progress(progress_form form, int all);

    // State of one profile, by its place in the run; running ones are shown. done: profiles that are through.
    void update(int place, const profile_progress& state, int done);
    // Takes the line off the terminal.
    void clear() const;

private:
    void draw() const;
    void write_json(const profile_progress& state) const;
    qint64 rows() const;
    qint64 rows_per_second() const;

    progress_form form;
    int all_profiles;
    int done_profiles = 0;
    QMap<int, profile_progress> states;
    QElapsedTimer elapsed;
};
