// SPDX-License-Identifier: MIT
// One run at a time into one result folder.
#pragma once

#include <QByteArray>
#include <QString>

// Takes the process's own lock of a whole file that is open for writing, without waiting. False: see errno, which
// is_locked_by_another() reads. The lock ends when the process closes the file anywhere.
bool lock_whole_file(int descriptor);
bool is_locked_by_another(int error);
// True when another process holds it.
bool is_lock_held(int descriptor);

class run_lock {
public:
    run_lock() = default;
    ~run_lock();
    run_lock(const run_lock&) = delete;
    run_lock& operator=(const run_lock&) = delete;

    // Takes the lock of the folder (which exists), or says why not: another run holds it, or it cannot be made. The
    // kernel holds it for the living process, so a run that died leaves none behind; the empty file stays.
    bool take(const QString& folder, QString& reason);
    // Removes the lock's file, of a folder that is about to be removed by the run that holds it.
    static void remove(const QString& folder);
    bool is_taken() const { return holds; }

private:
    int handle = -1;
    bool holds = false;
};
