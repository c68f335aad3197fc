// SPDX-License-Identifier: MIT
// One run at a time on one source of a batch, on any machine that shares the folder. The kernel holds the lock for the
// living process: on a local disk it ends with the process, on NFS (version 4) with the lease of a machine that is
// gone.
#pragma once

#include <QByteArray>
#include <QString>

namespace batch {

class source_lock {
public:
    source_lock() = default;
    ~source_lock();
    source_lock(const source_lock&) = delete;
    source_lock& operator=(const source_lock&) = delete;

    // file: made where it is missing; holder goes into it, for people. False: reason says who holds it or what fails.
    bool take(const QString& file, const QString& holder, QString& reason);
    // Gives it back and removes the file.
    void remove();

private:
    int handle = -1;
    QByteArray path;
};

enum class lock_state { none, held, left_behind };
// Looks without taking it, so it disturbs nobody. holder: what stands in the file.
lock_state look_at_lock(const QString& file, QString& holder);

} // namespace batch
