// SPDX-License-Identifier: MIT
// Writing of the sample source's plain files.
#include "samples/sample_files.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <cstdio>

bool write_sample_file(const QString& path, const QByteArray& content) {
    QFile file(path);
    const bool written = QDir().mkpath(QFileInfo(path).path()) && file.open(QIODevice::WriteOnly) &&
                         file.write(content) == content.size() && file.flush();
    if (!written) {
        std::fprintf(stderr, "cannot write %s: %s\n", qPrintable(path), qPrintable(file.errorString()));
    }
    return written;
}
