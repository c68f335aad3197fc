// SPDX-License-Identifier: MIT
// What tests of hives share: a file for a hive in a temporary folder, values, and short ways to write texts.
#pragma once

#include "samples/hive_writer.h"

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

inline QString q(const char* text) {
    return QString::fromUtf8(text);
}

// "a|b|c" as three texts, "" as none.
inline QStringList list_of(const char* texts) {
    return q(texts).split(QLatin1Char('|'), Qt::SkipEmptyParts);
}

inline hive_value value_of(const QString& name, const QByteArray& data = "data") {
    return {name, hive_t_REG_BINARY, data};
}
