// SPDX-License-Identifier: MIT
// A digest that is missing is a difference: nothing is called the same that was not compared.
#include "host/record/verify.h"

#include "host/record/file_digest.h"
#include "source/native_names.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <cerrno>

namespace {

QString difference_of(const QString& path, const QJsonObject& recorded) {
    const QByteArray wanted = recorded[QStringLiteral("sha256")].toString().toLatin1();
    if (wanted.isEmpty()) {
        return QStringLiteral("its digest was not recorded");
    }
    const QByteArray found = digest_of_file(path);
    if (found.isEmpty()) {
        return QStringLiteral("it cannot be read: ") + error_words(errno);
    }
    return found == wanted
               ? QString()
               : QStringLiteral("it differs: SHA-256 %1, recorded %2").arg(QLatin1String(found), QLatin1String(wanted));
}

} // namespace

verification verify_run(const QString& record_file, const QString& source) {
    verification result;
    QFile file(record_file);
    if (!file.open(QIODevice::ReadOnly)) {
        result.unreadable = file.errorString();
        return result;
    }
    const QJsonObject record = QJsonDocument::fromJson(file.readAll()).object();
    if (record[QStringLiteral("format")].toInt() != 1) {
        result.unreadable = QStringLiteral("it is no run record of a known format");
        return result;
    }
    const auto look_at = [&](const QString& path, const QJsonObject& recorded) {
        result.files.append({path, difference_of(path, recorded)});
        result.differences += result.files.last().difference.isEmpty() ? 0 : 1;
    };
    // The result may lie elsewhere now, and a later one's files where it lay.
    const QJsonArray all_written = record[QStringLiteral("written")].toArray();
    const QDir recorded_folder = QFileInfo(all_written.at(0)[QStringLiteral("path")].toString()).dir();
    const QDir folder = QFileInfo(record_file).dir();
    for (const QJsonValue& written : all_written) {
        const QString path = written[QStringLiteral("path")].toString();
        const QString moved = QDir::cleanPath(folder.absoluteFilePath(recorded_folder.relativeFilePath(path)));
        look_at(QFile::exists(moved) ? moved : path, written.toObject());
    }
    const QString recorded_source = record[QStringLiteral("source")].toString();
    const QJsonArray all_evidence = record[QStringLiteral("evidence")].toArray();
    for (const QJsonValue& evidence : all_evidence) {
        const QString path = evidence[QStringLiteral("path")].toString();
        if (!source.isEmpty()) {
            const bool is_below = path.startsWith(recorded_source);
            look_at(is_below ? QDir(source).filePath(path.mid(recorded_source.size())) : path, evidence.toObject());
        }
    }
    return result;
}
