// SPDX-License-Identifier: MIT
// A missing value reads as 0 or ''.
#include "host/exports/report_record.h"

#include "host/record/file_digest.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QJsonArray>
#include <QJsonDocument>

#include <algorithm>

namespace {

void read_run(const QString& path, report_record& record) {
    constexpr qint64 largest = 256 << 20;
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) {
        record.trouble = file.errorString();
        return;
    }
    QJsonParseError error = {};
    const QJsonDocument document = QJsonDocument::fromJson(file.read(largest), &error);
    record.is_there = document.isObject();
    record.run = document.object();
    record.trouble = record.is_there ? QString() : QStringLiteral("it is damaged: ") + error.errorString();
}

} // namespace

qint64 report_record::number(const char* name) const {
    constexpr double largest = 9e15;
    return static_cast<qint64>(std::clamp(run[QLatin1String(name)].toDouble(), 0.0, largest));
}

QString report_record::text(const char* name) const {
    return run[QLatin1String(name)].toString();
}

QStringList report_record::texts(const char* name) const {
    QStringList list;
    const QJsonArray values = run[QLatin1String(name)].toArray();
    for (const QJsonValue& value : values) {
        list.append(value.toString());
    }
    return list;
}

QString report_record::text_in(const QJsonValue& object, const char* name) {
    return object.toObject()[QLatin1String(name)].toString();
}

QString report_record::recorded_sha256() const {
    const QJsonArray written = run[QLatin1String("written")].toArray();
    for (const QJsonValue& file : written) {
        if (QFileInfo(text_in(file, "path")).fileName() == QFileInfo(database).fileName()) {
            return text_in(file, "sha256");
        }
    }
    return {};
}

bool report_record::has_gaps() const {
    if (!is_there && is_merged()) {
        return std::any_of(outcomes.keyBegin(), outcomes.keyEnd(), [](const QString& outcome) {
            return outcome != QLatin1String("complete") && outcome != QLatin1String("nothing found");
        });
    }
    return !is_there || number("could_not_read") > 0 || number("failures") > 0 || number("exit_code") == 1 ||
           number("exit_code") == 5 || number("exit_code") >= 128 || !texts("not_examined").isEmpty() ||
           !run[QLatin1String("losses")].toArray().isEmpty() || !texts("output_troubles").isEmpty();
}

report_record read_report_record(const QString& database) {
    report_record record;
    record.database = database;
    const QDir folder = QFileInfo(database).dir();
    read_run(folder.filePath(QStringLiteral("run.json")), record);
    record.earlier = folder.entryList({QStringLiteral("run-*.json")}, QDir::Files).size();
    record.sha256 = digest_of_file(database);
    return record;
}
