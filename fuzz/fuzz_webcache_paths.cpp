// SPDX-License-Identifier: MIT
// Any directory, file name, index and URL make a path and a URL without harm, and the gate lets no path out of the
// root.
#include "ese/container_reader.h"
#include "extractors/webcache_paths.h"
#include "source/source_guard.h"

#include <QDir>
#include <QFileInfo>
#include <QTemporaryDir>

#include <cstdint>
#include <cstdlib>

namespace {

// A root with one file, and a file beside it that must stay out of reach.
struct fuzzed_source {
    QTemporaryDir folder;
    QString root = folder.path() + QStringLiteral("/root/");
    source_guard guard;
    fuzzed_source() : guard((QDir().mkpath(root), root)) {
        for (const char* name : {"root/a", "b"}) {
            QFile file(folder.filePath(QLatin1String(name)));
            file.open(QIODevice::WriteOnly);
        }
    }
};

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    static fuzzed_source source;
    const QString text = QString::fromUtf8(reinterpret_cast<const char*>(data), static_cast<int>(size));
    const QStringList parts = text.split(QLatin1Char('|'));
    specific_table::struct_ano_data entry;
    entry.container_directory = parts.value(0, QStringLiteral(""));
    entry.filename = parts.value(1, QStringLiteral(""));
    entry.secure_directory = parts.value(2, QStringLiteral(""));
    entry.container_secure_directories = secure_directory_names(parts.value(3));
    for (const QString& windows_path : {windows_path_in_secure_directory(entry), windows_path_in_directory(entry)}) {
        const QString path = on_disk_path(windows_path, source.root);
        const QString real = QFileInfo(path).canonicalFilePath();
        if (source.guard.exists(path) &&
            !(real + QLatin1Char('/')).startsWith(QFileInfo(source.root).canonicalFilePath() + QLatin1Char('/'))) {
            std::abort();
        }
    }
    if (url_without_user(text).isNull() || url_without_domstore(text).size() > text.size()) {
        std::abort();
    }
    return 0;
}
