// SPDX-License-Identifier: MIT
// Files are opened without waiting and without following a last link.
#include "host/health/evidence_files.h"

#include "host/health/file_checker.h"
#include "source/folder_listing.h"
#include "source/native_names.h"
#include "source/quiet_open.h"
#include "source/real_location.h"

#include <QVector>

#include <cerrno>
#include <fcntl.h>
#include <sys/stat.h>

namespace {

constexpr int for_reading = O_RDONLY | O_NONBLOCK | O_NOFOLLOW | O_NOCTTY | O_CLOEXEC;

// The file's verdict after its bytes have gone by once, or why they could not all be read. Cancelled: neither.
void judge(const QByteArray& file, file_checker& checker, const quiet_file& opened, evidence_paths& paths,
           const std::function<bool()>& cancelled) {
    constexpr qint64 chunk_size = 1 << 20;
    QByteArray chunk(static_cast<int>(chunk_size), Qt::Uninitialized);
    qint64 got = 0;
    for (qint64 offset = 0; (got = opened.read(chunk.data(), chunk_size, offset)) > 0 && errno == 0; offset += got) {
        checker.take(chunk.constData(), got);
        if (cancelled()) {
            return;
        }
    }
    if (errno != 0) {
        paths.report().add_problem(shown_path(file), error_words(errno));
        return;
    }
    const file_health found = checker.finish();
    const QStringList first = found.problem.isEmpty() ? QStringList() : QStringList(found.problem);
    for (const QString& problem : first + found.problems) {
        paths.report().add_problem(shown_path(file), problem);
    }
    for (const QString& note : found.notes) {
        paths.report().add_note(shown_path(file), note);
    }
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

void check_tree_entry(const QByteArray& entry, QVector<QByteArray>& folders, evidence_paths& paths) {
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
        const quiet_file opened(entry, for_reading);
        if (!opened.is_open()) {
            paths.report().add_problem(shown_path(entry), error_words(errno));
        }
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
        const auto checker = kind == evidence_kind::ese_database ? ese_database_checker() : registry_hive_checker();
        judge(file, *checker, opened, paths, cancelled);
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
            check_tree_entry(folder + '/' + name, folders, paths);
        }
    }
}
