// SPDX-License-Identifier: MIT
// Locks of a process: unlike those of flock(2) they can be asked about, no child inherits them for a moment, and NFS
// knows them. They end when the process closes the file anywhere, so it opens the file once.
#include "host/batch/source_lock.h"

#include "host/run/run_lock.h"
#include "source/native_names.h"

#include <QFile>

#include <cerrno>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace batch {
namespace {

// The one who had it may have removed the file meanwhile: then it is another one that the next comes to lock.
bool is_still(int handle, const QByteArray& path) {
    struct stat opened = {};
    struct stat named = {};
    return ::fstat(handle, &opened) == 0 && ::stat(path.constData(), &named) == 0 && opened.st_ino == named.st_ino &&
           opened.st_dev == named.st_dev;
}

// The first line: what follows is left of one who had a longer name.
QString holder_in(int handle) {
    char text[256];
    const ssize_t size = ::pread(handle, text, sizeof text, 0);
    return QString::fromUtf8(text, static_cast<int>(qMax<ssize_t>(size, 0))).section(QLatin1Char('\n'), 0, 0);
}

} // namespace

source_lock::~source_lock() {
    if (handle >= 0) {
        ::close(handle);
    }
}

bool source_lock::take(const QString& file, const QString& holder, QString& reason) {
    constexpr int most_tries = 100;
    path = QFile::encodeName(file);
    for (int i = 0; i < most_tries; ++i) {
        const int opened = ::open(path.constData(), O_RDWR | O_CREAT | O_CLOEXEC | O_NOFOLLOW, 0644);
        if (opened < 0 || !lock_whole_file(opened)) {
            const int error = errno;
            const bool busy = opened >= 0 && is_locked_by_another(error);
            reason = busy ? QStringLiteral("another run works on it: %1").arg(holder_in(opened)) : error_words(error);
            if (opened >= 0) {
                ::close(opened);
            }
            return false;
        }
        if (is_still(opened, path)) {
            handle = opened;
            const QByteArray text = holder.toUtf8() + '\n';
            const bool written = ::pwrite(handle, text.constData(), size_t(text.size()), 0) == text.size();
            reason = written ? QString() : error_words(errno);
            return written;
        }
        ::close(opened);
    }
    reason = QStringLiteral("other runs take it again and again");
    return false;
}

void source_lock::remove() {
    if (handle >= 0) {
        ::unlink(path.constData());
        ::close(handle);
        handle = -1;
    }
}

lock_state look_at_lock(const QString& file, QString& holder) {
    const int opened = ::open(QFile::encodeName(file).constData(), O_RDONLY | O_CLOEXEC | O_NOFOLLOW);
    if (opened < 0) {
        return lock_state::none;
    }
    const bool held = is_lock_held(opened);
    holder = holder_in(opened);
    ::close(opened);
    return held ? lock_state::held : lock_state::left_behind;
}

} // namespace batch
