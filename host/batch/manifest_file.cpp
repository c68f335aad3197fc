// SPDX-License-Identifier: MIT
// The copy is the same in nearly every run, so it is compared as bytes first.
#include "host/batch/manifest_file.h"

#include "host/batch/publish.h"

#include <QFile>
#include <QHash>

namespace batch {
namespace {

// The id of the first source that was not left as it is; empty: there is none.
QString changed_source(const manifest& before, const manifest& after) {
    QHash<QString, QByteArray> lines;
    for (const manifest_source& source : after.sources) {
        lines.insert(source.id, line_of(source));
    }
    for (const manifest_source& source : before.sources) {
        if (lines.value(source.id) != line_of(source)) {
            return source.id;
        }
    }
    return {};
}

} // namespace

QByteArray manifest_text(const QString& file, QString& error) {
    constexpr qint64 largest = 1 << 30;
    QFile opened(file);
    if (!opened.open(QIODevice::ReadOnly)) {
        error = opened.errorString();
        return {};
    }
    if (opened.size() > largest) {
        error = QStringLiteral("it is larger than any manifest");
        return {};
    }
    const QByteArray text = opened.readAll();
    if (opened.error() != QFileDevice::NoError) {
        error = opened.errorString();
        return {};
    }
    return text.isNull() ? QByteArrayLiteral("") : text;
}

bool keep_manifest(const QByteArray& text, const out_folder& out, bool& is_other, QString& error) {
    is_other = false;
    QByteArray kept;
    if (QFile::exists(out.manifest())) {
        kept = manifest_text(out.manifest(), error);
        if (kept.isNull()) {
            return false;
        }
    }
    if (kept == text && !kept.isNull()) {
        return true;
    }
    const manifest after = read_manifest(text);
    if (!after.problems.isEmpty()) {
        is_other = true;
        error = QStringLiteral("the manifest: ") + after.problems.first();
        return false;
    }
    const QString changed = changed_source(read_manifest(kept), after);
    if (!changed.isEmpty()) {
        is_other = true;
        error = QStringLiteral("the results are of another manifest: it has the source %1 otherwise").arg(changed);
        return false;
    }
    return write_whole(out.manifest(), text, error);
}

} // namespace batch
