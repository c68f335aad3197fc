// SPDX-License-Identifier: MIT
// The summary's own facts, and around them machine, evidence and digests. docs/run_record.schema.json describes it.
#include "host/run/run_record.h"

#include "host/health/sha256.h"
#include "host/record/evidence_json.h"
#include "host/record/links_file.h"
#include "host/record/versions.h"
#include "source/native_names.h"

#include <QFile>
#include <QFileInfo>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QSaveFile>
#include <QSysInfo>
#include <QThread>
#include <QTimeZone>

#include <cerrno>
#include <clocale>

namespace {

QString key(const char* name) {
    return QLatin1String(name);
}

QString utc(const QDateTime& time) {
    return time.toUTC().toString(Qt::ISODateWithMs);
}

QJsonObject machine() {
    return {{key("kernel"), QSysInfo::kernelType() + QLatin1Char(' ') + QSysInfo::kernelVersion()},
            {key("system"), QSysInfo::prettyProductName()},
            {key("architecture"), QSysInfo::currentCpuArchitecture()},
            {key("cores"), QThread::idealThreadCount()},
            {key("time_zone"), QString::fromLatin1(QTimeZone::systemTimeZoneId())},
            {key("locale"), QString::fromLocal8Bit(std::setlocale(LC_CTYPE, nullptr))}};
}

QString name_of(protection state) {
    switch (state) {
    case protection::off:
        return key("off");
    case protection::active:
        return key("active");
    case protection::unavailable:
        return key("unavailable");
    case protection::failed:
        break;
    }
    return key("failed");
}

QJsonObject sandbox_of(const sandbox_state& state, bool asked) {
    return {{key("asked"), asked},
            {key("no_new_privs"), state.no_new_privs},
            {key("landlock"), name_of(state.landlock)},
            {key("landlock_abi"), state.landlock_abi},
            {key("syscall_filter"), name_of(state.syscall_filter)},
            {key("note"), state.note}};
}

// Path, size and digest of a file that the run wrote; a digest of null where it cannot be read.
QJsonObject written_file(const QString& path) {
    constexpr qint64 chunk_size = 1 << 20;
    QFile file(path);
    sha256 digest;
    bool read = file.open(QIODevice::ReadOnly);
    for (QByteArray chunk; read && !(chunk = file.read(chunk_size)).isEmpty();) {
        digest.take(chunk.constData(), chunk.size());
    }
    read = read && file.error() == QFileDevice::NoError;
    return {{key("path"), path},
            {key("size"), QFileInfo(path).size()},
            {key("sha256"), read ? QJsonValue(QString::fromLatin1(digest.finish())) : QJsonValue()}};
}

QJsonObject record_of(const run_summary& summary, const run_circumstances& circumstances) {
    QJsonObject record = summary_object(summary);
    QJsonArray evidence;
    for (const evidence_record& file : summary.evidence) {
        evidence.append(to_json(file));
    }
    record.insert(key("format"), 1);
    record.insert(key("program"), key("cortana"));
    record.insert(key("libraries"), library_versions());
    record.insert(key("arguments"), QJsonArray::fromStringList(circumstances.arguments));
    record.insert(key("machine"), machine());
    record.insert(key("sandbox"), sandbox_of(summary.sandbox, circumstances.sandbox_asked));
    record.insert(key("started"), utc(circumstances.started));
    record.insert(key("ended"), utc(circumstances.ended));
    record.insert(key("evidence"), evidence);
    record.insert(key("evidence_not_listed"), summary.evidence_not_listed);
    QJsonArray written{written_file(summary.output.database), written_file(summary.output.log)};
    if (QFile::exists(links_file(summary.output.database))) {
        written.append(written_file(links_file(summary.output.database)));
    }
    record.insert(key("written"), written);
    return record;
}

// Moves a record that is there out of the way of the next one.
bool keep_earlier_record(const QString& file) {
    if (!QFile::exists(file)) {
        return true;
    }
    const QString stem = file.chopped(5) + QFileInfo(file).lastModified().toUTC().toString(key("-yyyyMMddThhmmsszzzZ"));
    QString kept = stem + key(".json");
    for (int number = 2; QFile::exists(kept); ++number) {
        kept = QStringLiteral("%1-%2.json").arg(stem).arg(number);
    }
    return QFile::copy(file, kept);
}

} // namespace

bool write_run_record(const run_summary& summary, const run_circumstances& circumstances, QString& error) {
    const QString file = summary.output.folder + key("run.json");
    const QByteArray text = QJsonDocument(record_of(summary, circumstances)).toJson(QJsonDocument::Indented);
    QSaveFile saved(file);
    // The commit alone would not notice that what is still buffered cannot be written.
    if (!saved.open(QIODevice::WriteOnly) || saved.write(text) != text.size() || !saved.flush() ||
        !keep_earlier_record(file) || !saved.commit()) {
        const int reason = errno;
        const bool is_known = saved.error() != QFileDevice::NoError && saved.error() != QFileDevice::UnspecifiedError;
        error = QStringLiteral("the run record %1 cannot be written: %2")
                    .arg(file, is_known || reason == 0 ? saved.errorString() : error_words(reason));
        return false;
    }
    return true;
}
