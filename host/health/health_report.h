// SPDX-License-Identifier: MIT
// What was seen of the evidence besides rows: "no data" must never look like "could not be read".
#pragma once

#include <QString>
#include <QVector>

// One thing seen, about one path of the source.
struct finding {
    QString path;
    QString reason;
};

struct health_report {
    QVector<finding> problems; // evidence that could not be read, the first ones
    QVector<finding> notes;    // what an examiner should know, the first ones
    qint64 problem_count = 0;
    qint64 note_count = 0;

    void add_problem(const QString& path, const QString& reason) { add(problems, problem_count, path, reason); }
    void add_note(const QString& path, const QString& reason) { add(notes, note_count, path, reason); }
    void add(const health_report& other) {
        for (const finding& one : other.problems) {
            add_problem(one.path, one.reason);
        }
        for (const finding& one : other.notes) {
            add_note(one.path, one.reason);
        }
        problem_count += other.problem_count - other.problems.size();
        note_count += other.note_count - other.notes.size();
    }

private:
    static void add(QVector<finding>& list, qint64& count, const QString& path, const QString& reason) {
        constexpr int most_kept = 1000; // a damaged source can have a finding for each of its files
        ++count;
        if (list.size() < most_kept) {
            list.append({path, reason});
        }
    }
};
