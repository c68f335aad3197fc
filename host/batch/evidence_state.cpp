// SPDX-License-Identifier: MIT
// Nothing is read beyond what tells which files belong to an image.
#include "host/batch/evidence_state.h"

#include "host/health/utc_text.h"
#include "host/intake/image_files.h"
#include "source/native_names.h"

#include <QFile>

#include <cerrno>
#include <sys/stat.h>

namespace batch {
namespace {

bool is_later(const timespec& one, const timespec& other) {
    return one.tv_sec != other.tv_sec ? one.tv_sec > other.tv_sec : one.tv_nsec > other.tv_nsec;
}

} // namespace

bool look_at_evidence(const manifest_source& source, evidence_state& state, QString& problem) {
    const QByteArray path = QFile::encodeName(source.path);
    struct stat status = {};
    if (::stat(path.constData(), &status) != 0) {
        problem = error_words(errno);
        return false;
    }
    state = {source.path, 1, 0, {}, source.sha256};
    timespec latest = status.st_mtim;
    if (S_ISDIR(status.st_mode)) {
        if (::stat((path + "/Users").constData(), &status) == 0 && is_later(status.st_mtim, latest)) {
            latest = status.st_mtim;
        }
        state.modified = utc_text(latest.tv_sec, latest.tv_nsec);
        return true;
    }
    state.files = 0;
    for (const QByteArray& file : intake::source_files(path)) {
        if (::stat(file.constData(), &status) != 0) {
            problem = QStringLiteral("%1: %2").arg(shown_path(file), error_words(errno));
            return false;
        }
        ++state.files;
        state.size += status.st_size;
        latest = is_later(status.st_mtim, latest) ? status.st_mtim : latest;
    }
    state.modified = utc_text(latest.tv_sec, latest.tv_nsec);
    return true;
}

bool is_same_evidence(const evidence_state& one, const evidence_state& other) {
    if (!one.sha256.isEmpty() && !other.sha256.isEmpty()) {
        return one.sha256 == other.sha256;
    }
    return one.path == other.path && one.files == other.files && one.size == other.size &&
           one.modified == other.modified;
}

QJsonObject to_json(const evidence_state& state) {
    return {{QStringLiteral("path"), state.path},
            {QStringLiteral("files"), state.files},
            {QStringLiteral("size"), state.size},
            {QStringLiteral("modified"), state.modified},
            {QStringLiteral("sha256"), state.sha256.isEmpty() ? QJsonValue() : QJsonValue(state.sha256)}};
}

evidence_state evidence_state_of(const QJsonObject& object) {
    const auto text = [&](const char* key) { return object[QLatin1String(key)].toString(); };
    return {text("path"), object[QStringLiteral("files")].toInt(),
            static_cast<qint64>(object[QStringLiteral("size")].toDouble()), text("modified"), text("sha256")};
}

} // namespace batch
