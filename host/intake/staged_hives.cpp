// SPDX-License-Identifier: MIT
// A copy is written anew only when its logs changed it.
#include "host/intake/staged_hives.h"

#include "host/health/sha256.h"
#include "host/intake/hive_logs.h"
#include "host/intake/staging_folder.h"
#include "source/native_names.h"

namespace intake {
namespace {

constexpr qint64 largest_hive = qint64{512} << 20; // bytes that are held at once

struct staged_bytes {
    QByteArray bytes;
    QString problem; // why they are not all there; a file that is not there is none
};

staged_bytes bytes_of(const staging_folder& folder, const QByteArray& path) {
    quiet_file file;
    const int failed = folder.open_file(path, file);
    if (failed != 0) {
        return {{}, failed == ENOENT ? QString() : error_words(failed)};
    }
    const qint64 size = file.size();
    if (size < 0 || size > largest_hive) {
        return {{}, QStringLiteral("it is too large for its logs to be applied (%1 bytes)").arg(size)};
    }
    QByteArray bytes(static_cast<int>(size), '\0');
    bytes.truncate(static_cast<int>(file.read(bytes.data(), size, 0)));
    return {bytes, errno != 0 ? error_words(errno) : QString()};
}

int write_file(const staging_folder& folder, const QByteArray& path, const QByteArray& bytes) {
    quiet_file file;
    const int failed = folder.create_file(path, file);
    return failed == 0 ? write_all(file, bytes.constData(), bytes.size()) : failed;
}

// 0 or an errno value. At every moment a whole hive stands at the path.
int replace(const staging_folder& folder, const QByteArray& path, const QByteArray& before, const QByteArray& after) {
    const QByteArray fresh = path + ".with_logs";
    int failed = write_file(folder, as_found(path), before);
    failed = failed == 0 ? write_file(folder, fresh, after) : failed;
    return failed == 0 ? folder.rename_file(fresh, path) : failed;
}

void apply_logs_of(const staging_folder& folder, staged_entry& entry, const staging_hearer& hearer,
                   staging_result& result) {
    const QString shown = shown_path(entry.source);
    const staged_bytes hive = bytes_of(folder, entry.path);
    const staged_bytes log1 = bytes_of(folder, entry.path + ".LOG1");
    const staged_bytes log2 = bytes_of(folder, entry.path + ".LOG2");
    for (const staged_bytes* const one : {&hive, &log1, &log2}) {
        if (!one->problem.isEmpty()) {
            result.findings.add_problem(shown, one->problem);
            return;
        }
    }
    const hive_replay replay = apply_hive_logs(hive.bytes, log1.bytes, log2.bytes);
    for (const QString& note : replay.notes) {
        result.findings.add_note(shown, note);
    }
    if (!replay.is_applied()) {
        return;
    }
    const int failed = replace(folder, entry.path, hive.bytes, replay.hive);
    if (failed != 0) {
        result.stopped = QStringLiteral("%1: %2").arg(shown_path(entry.path), error_words(failed));
        return;
    }
    sha256 digest;
    digest.take(replay.hive.constData(), replay.hive.size());
    entry.sha256_with_logs = QByteArray::fromHex(digest.finish());
    entry.log_entries = replay.entries;
    hearer.staged(entry);
    result.findings.add_note(shown, QStringLiteral("it was not finished writing: rows come from a copy with %1 entries "
                                                   "of %2 applied")
                                        .arg(replay.entries)
                                        .arg(replay.logs.join(QStringLiteral(" and "))));
}

} // namespace

void apply_staged_logs(const QByteArray& staging, staging_result& result, const staging_hearer& hearer) {
    const staging_folder folder(staging);
    for (staged_entry& entry : result.entries) {
        if (entry.path.endsWith("/NTUSER.DAT") && entry.path.count('/') == 2 && result.stopped.isEmpty()) {
            apply_logs_of(folder, entry, hearer, result);
        }
    }
}

} // namespace intake
