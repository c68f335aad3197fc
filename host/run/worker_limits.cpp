// SPDX-License-Identifier: MIT
// A process that has ended gives no figures, and so passes no limit.
#include "host/run/worker_limits.h"

#include "host/run/process_limits.h"
#include "source/folder_listing.h"
#include "source/native_names.h"
#include "source/real_location.h"

#include <QFile>

#include <sys/stat.h>

namespace {

QByteArray proc_entry(pid_t process, const char* name) {
    return "/proc/" + QByteArray::number(process) + '/' + name;
}

QString bytes_in_words(qint64 bytes) {
    constexpr qint64 mebibyte = qint64{1024} * 1024;
    return bytes % mebibyte == 0 ? QStringLiteral("%1 MiB").arg(bytes / mebibyte)
                                 : QStringLiteral("%1 bytes").arg(bytes);
}

} // namespace

worker_watch::worker_watch(pid_t watched, const QString& database_file, const worker_limits& watched_limits)
    : process(watched), database(QFile::encodeName(database_file)), limits(watched_limits) {
    step_began();
}

void worker_watch::step_began() {
    step.start();
    silence.start();
}

QString worker_watch::passed_limit() {
    const auto memory = memory_of(process);
    if (memory && memory->held() > limits.memory) {
        return QStringLiteral("it held more than %1 of memory").arg(bytes_in_words(limits.memory));
    }
    if (database_size() > limits.output) {
        return QStringLiteral("its database grew beyond %1").arg(bytes_in_words(limits.output));
    }
    const qint64 now_moved = bytes_moved();
    if (now_moved != moved) {
        moved = now_moved;
        silence.start();
    }
    if (silence.elapsed() > limits.silence_seconds * 1000) {
        return QStringLiteral("it made no progress for %1 s").arg(limits.silence_seconds);
    }
    if (step.elapsed() > limits.step_seconds * 1000) {
        return QStringLiteral("the step took longer than %1 s").arg(limits.step_seconds);
    }
    return {};
}

qint64 worker_watch::bytes_moved() const {
    QFile io(QFile::decodeName(proc_entry(process, "io")));
    if (!io.open(QIODevice::ReadOnly)) {
        return moved;
    }
    qint64 sum = 0;
    for (const QByteArray& line : io.readAll().split('\n')) {
        if (line.startsWith("rchar: ") || line.startsWith("wchar: ")) {
            sum += line.mid(7).toLongLong();
        }
    }
    return sum;
}

qint64 worker_watch::database_size() const {
    qint64 size = 0;
    for (const char* const suffix : {"", "-journal"}) {
        struct stat status = {};
        if (!database.isEmpty() && ::stat((database + suffix).constData(), &status) == 0) {
            size = std::max<qint64>(size, status.st_size);
        }
    }
    return size;
}

QString open_evidence_of(pid_t process, const QString& source_root) {
    const QByteArray root = real_location(QFile::encodeName(source_root));
    const QByteArray descriptors = proc_entry(process, "fd");
    for (const listed_name& descriptor : list_folder(descriptors).names) {
        const QByteArray file = real_location(descriptors + '/' + descriptor.name);
        struct stat status = {};
        if (!root.isEmpty() && !file.isEmpty() && is_at_or_below(file, root) &&
            ::stat(file.constData(), &status) == 0 && S_ISREG(status.st_mode)) {
            return shown_path(file);
        }
    }
    return {};
}
