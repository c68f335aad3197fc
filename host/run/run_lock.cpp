// SPDX-License-Identifier: MIT
// flock(2): workers do not inherit it, since the descriptor closes when they are started.
#include "host/run/run_lock.h"

#include "source/native_names.h"

#include <QFile>

#include <cerrno>
#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

run_lock::~run_lock() {
    if (handle >= 0) {
        ::close(handle);
    }
}

bool run_lock::take(const QString& folder, QString& reason) {
    const QByteArray file = QFile::encodeName(folder) + ".cortana.lock";
    handle = ::open(file.constData(), O_RDWR | O_CREAT | O_CLOEXEC | O_NOFOLLOW, 0644);
    holds = handle >= 0 && ::flock(handle, LOCK_EX | LOCK_NB) == 0;
    if (holds) {
        return true;
    }
    reason = errno == EWOULDBLOCK ? QStringLiteral("another run writes into it") : error_words(errno);
    return false;
}

void run_lock::remove(const QString& folder) {
    QFile::remove(folder + QStringLiteral(".cortana.lock"));
}
