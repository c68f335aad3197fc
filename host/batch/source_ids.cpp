// SPDX-License-Identifier: MIT
// Bytes beyond ASCII are many to a letter; one "_" stands for each run of what cannot be kept.
#include "host/batch/source_ids.h"

#include <cctype>

namespace batch {
namespace {

QString plain(const QByteArray& path) {
    QString text;
    for (const char byte : path) {
        const auto code = static_cast<unsigned char>(byte);
        const bool kept = code < 0x80 && (std::isalnum(code) != 0 || byte == '.' || byte == '-' || byte == '_');
        if (kept) {
            text += QLatin1Char(byte);
        } else if (!text.endsWith(QLatin1Char('_'))) {
            text += QLatin1Char('_');
        }
    }
    return text;
}

} // namespace

QString id_of(const QByteArray& path, taken_ids& taken) {
    constexpr int longest = 90; // leaves room for a number
    QString stem = plain(path).right(longest);
    while (stem.startsWith(QLatin1Char('.')) || stem.startsWith(QLatin1Char('-')) ||
           (stem.startsWith(QLatin1Char('_')) && stem.size() > 1)) {
        stem.remove(0, 1);
    }
    stem = stem.isEmpty() ? QStringLiteral("_") : stem;
    QString id = stem;
    for (int number = 2; taken.contains(id.toLower()); ++number) {
        id = QStringLiteral("%1-%2").arg(stem).arg(number);
    }
    taken.insert(id.toLower());
    return id;
}

} // namespace batch
