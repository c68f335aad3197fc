// SPDX-License-Identifier: MIT
// Files are opened without waiting and without following a last link.
#include "host/health/evidence_files.h"

#include "host/health/file_checker.h"
#include "host/health/sha256.h"
#include "host/health/utc_text.h"
#include "source/folder_listing.h"
#include "source/native_names.h"
#include "source/quiet_open.h"
#include "source/real_location.h"

#include <QVector>

#include <algorithm>
#include <cerrno>
#include <fcntl.h>
#include <sys/stat.h>

namespace {

constexpr int for_reading = O_RDONLY | O_NONBLOCK | O_NOFOLLOW | O_NOCTTY | O_CLOEXEC;

QString time_text(const statx_timestamp& time) {
    return utc_text(time.tv_sec, time.tv_nsec);
}

evidence_record record_of(const QByteArray& file, const quiet_file& opened) {
    evidence_record record;
    record.path = shown_path(file);
    record.kind = QStringLiteral("file");
    record.size = opened.size();
    struct statx status = {};
    if (::statx(opened.descriptor(), "", AT_EMPTY_PATH, STATX_BASIC_STATS | STATX_BTIME, &status) == 0) {
        record.modified = time_text(status.stx_mtime);
        record.accessed = time_text(status.stx_atime);
        record.changed = time_text(status.stx_ctime);
        record.created = (status.stx_mask & STATX_BTIME) != 0 ? time_text(status.stx_btime) : QString();
    }
    return record;
}

// Hands the file's bytes to the digest and to take, once each. False when cancelled or when a read failed; the latter
// is reported.
bool read_through(const quiet_file& opened, evidence_record& record, evidence_paths& paths,
                  const std::function<bool()>& cancelled, const std::function<void(const char*, qint64)>& take) {
    constexpr qint64 chunk_size = 1 << 20;
    // No larger than the file: a profile may hold thousands of small recordings.
    QByteArray chunk(static_cast<int>(std::clamp<qint64>(opened.size() + 1, 1, chunk_size)), Qt::Uninitialized);
    sha256 digest;
    qint64 got = 0;
    for (qint64 offset = 0; (got = opened.read(chunk.data(), chunk.size(), offset)) > 0 && errno == 0; offset += got) {
        digest.take(chunk.constData(), got);
        take(chunk.constData(), got);
        if (cancelled()) {
            return false;
        }
    }
    if (errno != 0) {
        paths.report().add_problem(record.path, error_words(errno));
        return false;
    }
    record.sha256 = digest.finish();
    return true;
}

// The file's verdict after its bytes have gone by once.
void judge(const QByteArray& file, const QByteArray& location, evidence_kind kind, const quiet_file& opened,
           evidence_paths& paths, const std::function<bool()>& cancelled) {
    const auto checker = kind == evidence_kind::ese_database ? ese_database_checker() : registry_hive_checker();
    evidence_record record = record_of(file, opened);
    record.location = location;
    if (read_through(opened, record, paths, cancelled,
                     [&](const char* bytes, qint64 size) { checker->take(bytes, size); })) {
        record.health = checker->finish();
        record.kind = record.health.kind;
    }
    const file_health& found = record.health;
    const QStringList first = found.problem.isEmpty() ? QStringList() : QStringList(found.problem);
    for (const QString& problem : first + found.problems) {
        paths.report().add_problem(record.path, problem);
    }
    for (const QString& note : found.notes) {
        paths.report().add_note(record.path, note);
    }
    paths.record(record);
}

void check_tree_link(const QByteArray& link, evidence_paths& paths) {
    const QByteArray real = real_location(link);
    struct stat status = {};
    if (real.isEmpty()) {
        paths.report().add_note(shown_path(link), QStringLiteral("it is a link that leads nowhere; passed over"));
    } else if (!is_at_or_below(real, paths.root())) {
        paths.report().add_note(shown_path(link), QStringLiteral("it is a link out of the source; not followed"));
    } else if (::lstat(real.constData(), &status) == 0 && S_ISDIR(status.st_mode)) {
        paths.report().add_note(shown_path(link), QStringLiteral("it is a link to a folder; not entered"));
    }
}

void check_tree_file(const QByteArray& file, evidence_paths& paths, const std::function<bool()>& cancelled) {
    const quiet_file opened(file, for_reading);
    if (!opened.is_open()) {
        paths.report().add_problem(shown_path(file), error_words(errno));
        return;
    }
    evidence_record record = record_of(file, opened);
    read_through(opened, record, paths, cancelled, [](const char*, qint64) {});
    paths.record(record);
}

void check_tree_entry(const QByteArray& entry, QVector<QByteArray>& folders, evidence_paths& paths,
                      const std::function<bool()>& cancelled) {
    struct stat status = {};
    if (::lstat(entry.constData(), &status) != 0) {
        paths.report().add_problem(shown_path(entry), error_words(errno));
    } else if (S_ISDIR(status.st_mode)) {
        folders.append(entry);
    } else if (S_ISLNK(status.st_mode)) {
        check_tree_link(entry, paths);
    } else if (!S_ISREG(status.st_mode)) {
        paths.report().add_note(shown_path(entry), QStringLiteral("it is not a regular file; passed over"));
    } else {
        check_tree_file(entry, paths, cancelled);
    }
}

} // namespace

void check_evidence_file(const QByteArray& file, evidence_kind kind, evidence_paths& paths,
                         const std::function<bool()>& cancelled) {
    const reached_path reached = paths.follow(file);
    if (!reached.there) {
        return;
    }
    if (!S_ISREG(reached.mode)) {
        paths.report().add_problem(shown_path(file), QStringLiteral("it is not a regular file"));
        return;
    }
    const quiet_file opened(reached.real, for_reading);
    if (!opened.is_open()) {
        paths.report().add_problem(shown_path(file), error_words(errno));
    } else if (opened.size() < 0) { // it was exchanged meanwhile
        paths.report().add_problem(shown_path(file), QStringLiteral("it is not a regular file"));
    } else {
        judge(file, reached.real, kind, opened, paths, cancelled);
    }
}

void check_evidence_tree(const QByteArray& top, evidence_paths& paths, const std::function<bool()>& cancelled) {
    const reached_path reached = paths.follow(top);
    if (!reached.there) {
        return;
    }
    if (!S_ISDIR(reached.mode)) {
        paths.report().add_problem(shown_path(top), QStringLiteral("it is not a folder"));
        return;
    }
    QVector<QByteArray> folders{reached.real};
    while (!folders.isEmpty()) {
        const QByteArray folder = folders.takeLast();
        const folder_listing listing = list_folder(folder);
        if (listing.error != 0) {
            paths.report().add_problem(shown_path(folder), error_words(listing.error));
        }
        for (const auto& [name, type] : listing.names) {
            if (cancelled()) {
                return;
            }
            check_tree_entry(folder + '/' + name, folders, paths, cancelled);
        }
    }
}
