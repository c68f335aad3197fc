// SPDX-License-Identifier: MIT
// Evidence is opened as quietly as when it was read first.
#include "host/record/file_digest.h"

#include "host/health/sha256.h"
#include "source/quiet_open.h"

#include <QFile>

#include <cerrno>

QByteArray digest_of_file(const QString& path) {
    constexpr qint64 chunk_size = 1 << 20;
    const quiet_file file(QFile::encodeName(path), O_RDONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC);
    if (!file.is_open()) {
        return {};
    }
    if (file.size() < 0) {
        errno = EINVAL;
        return {};
    }
    QByteArray chunk(static_cast<int>(chunk_size), Qt::Uninitialized);
    sha256 digest;
    qint64 got = 0;
    for (qint64 offset = 0; (got = file.read(chunk.data(), chunk_size, offset)) > 0; offset += got) {
        digest.take(chunk.constData(), got);
    }
    return errno == 0 ? digest.finish() : QByteArray();
}
