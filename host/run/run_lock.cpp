// SPDX-License-Identifier: MIT
// A lock of the process, fcntl(2): a worker that is being started does not inherit it for a moment, as it would one of
// flock(2). It ends when the process closes the file anywhere, so this is the only place that opens it.
#include "host/run/run_lock.h"

#include "source/native_names.h"

#include <QFile>

#include <cerrno>
#include <fcntl.h>
#include <unistd.h>

namespace {

struct flock whole_file() {
    struct flock whole = {};
    whole.l_type = F_WRLCK;
    whole.l_whence = SEEK_SET;
    return whole;
}

} // namespace

bool lock_whole_file(int descriptor) {
    struct flock whole = whole_file();
    return ::fcntl(descriptor, F_SETLK, &whole) == 0;
}

bool is_lock_held(int descriptor) {
    struct flock whole = whole_file();
    return ::fcntl(descriptor, F_GETLK, &whole) == 0 && whole.l_type != F_UNLCK;
}

bool is_locked_by_another(int error) {
    return error == EAGAIN || error == EACCES;
}

run_lock::~run_lock() {
    if (handle >= 0) {
        ::close(handle);
    }
}

bool run_lock::take(const QString& folder, QString& reason) {
    const QByteArray file = QFile::encodeName(folder) + ".cortana.lock";
    handle = ::open(file.constData(), O_RDWR | O_CREAT | O_CLOEXEC | O_NOFOLLOW, 0644);
    holds = handle >= 0 && lock_whole_file(handle);
    if (holds) {
        return true;
    }
    const bool is_busy = handle >= 0 && is_locked_by_another(errno);
    reason = is_busy ? QStringLiteral("another run writes into it") : error_words(errno);
    return false;
}

void run_lock::remove(const QString& folder) {
    QFile::remove(folder + QStringLiteral(".cortana.lock"));
}
