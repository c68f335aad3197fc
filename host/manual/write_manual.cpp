// SPDX-License-Identifier: MIT
// cortana_write_manual FOLDER: writes the manual pages, while building.
#include "host/manual/command_page.h"
#include "host/manual/result_page.h"

#include <QDir>
#include <QFile>

#include <cstdio>

namespace {

bool write_page(const QString& file, const QString& text) {
    QFile page(file);
    const QByteArray bytes = text.toUtf8();
    return page.open(QIODevice::WriteOnly) && page.write(bytes) == bytes.size() && page.flush();
}

} // namespace

int main(int argc, char** argv) {
    if (argc != 2) {
        std::fputs("usage: cortana_write_manual FOLDER\n", stderr);
        return 2;
    }
    const QString folder = QFile::decodeName(argv[1]);
    const bool done = QDir().mkpath(folder) && write_page(folder + QStringLiteral("/cortana.1"), command_page()) &&
                      write_page(folder + QStringLiteral("/cortana-result.5"), result_page());
    return done ? 0 : 1;
}
