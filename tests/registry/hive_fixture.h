// SPDX-License-Identifier: MIT
// What tests of hives share: a file for a hive in a temporary folder, and values whose data is their own name.
#pragma once

#include "evidence/hive_writer.h"

#include <QFile>
#include <QTemporaryDir>

class hive_file {
public:
    explicit hive_file(const QByteArray& bytes) {
        QFile file(path());
        if (!file.open(QIODevice::WriteOnly) || file.write(bytes) != bytes.size()) {
            qFatal("cannot write %s", qPrintable(path()));
        }
    }
    QString path() const { return folder.filePath(QStringLiteral("NTUSER.DAT")); }

private:
    QTemporaryDir folder;
};

inline hive_value value_of(const QString& name, const QByteArray& data = "data") {
    return {name, hive_t_REG_BINARY, data};
}
