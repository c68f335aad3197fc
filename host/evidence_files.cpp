// SPDX-License-Identifier: MIT
// Files are opened without waiting and without following a last link.
#include "host/evidence_files.h"

#include "host/evidence_headers.h"
#include "host/native_files.h"
#include "source/quiet_open.h"

#include <QVector>

#include <cerrno>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

class open_file {
public:
    explicit open_file(const QByteArray& path) {
        descriptor = open_quietly(path, O_RDONLY | O_NONBLOCK | O_NOFOLLOW | O_NOCTTY | O_CLOEXEC);
        error = descriptor < 0 ? errno : 0;
    }
    ~open_file() {
        if (descriptor >= 0) {
            ::close(descriptor);
        }
    }
    open_file(const open_file&) = delete;
    open_file& operator=(const open_file&) = delete;

    QByteArray read(qint64 offset, qint64 size) {
        QByteArray bytes(static_cast<int>(size), '\0');
        int done = 0;
        while (done < bytes.size()) {
            const ssize_t got = ::pread(descriptor, bytes.data() + done, static_cast<size_t>(bytes.size() - done),
                                        static_cast<off_t>(offset + done));
            if (got < 0 && errno == EINTR) {
                continue;
            }
            if (got <= 0) {
                error = got < 0 ? errno : error;
                break;
            }
            done += static_cast<int>(got);
        }
        bytes.truncate(done);
        return bytes;
    }

    int descriptor = -1;
    int error = 0; // errno of the last thing that failed, 0 when nothing did
};

void judge(const QByteArray& file, evidence_kind kind, open_file& opened, qint64 size, health_report& report) {
    const byte_reader read = [&opened](qint64 offset, qint64 count) { return opened.read(offset, count); };
    const header_verdict verdict =
        kind == evidence_kind::ese_database ? judge_ese_database(read, size) : judge_registry_hive(read, size);
    if (opened.error != 0) {
        report.add_problem(text_of(file), error_words(opened.error));
    } else if (!verdict.problem.isEmpty()) {
        report.add_problem(text_of(file), verdict.problem);
    } else if (!verdict.note.isEmpty()) {
        report.add_note(text_of(file), verdict.note);
    }
}

void check_tree_link(const QByteArray& link, evidence_paths& paths) {
    const QByteArray real = real_location(link);
    struct stat status = {};
    if (real.isEmpty()) {
        paths.report().add_note(text_of(link), QStringLiteral("it is a link that leads nowhere; passed over"));
    } else if (!is_at_or_below(real, paths.root())) {
        paths.report().add_note(text_of(link), QStringLiteral("it is a link out of the source; not followed"));
    } else if (::lstat(real.constData(), &status) == 0 && S_ISDIR(status.st_mode)) {
        paths.report().add_note(text_of(link), QStringLiteral("it is a link to a folder; not entered"));
    }
}

void check_tree_entry(const QByteArray& entry, QVector<QByteArray>& folders, evidence_paths& paths) {
    struct stat status = {};
    if (::lstat(entry.constData(), &status) != 0) {
        paths.report().add_problem(text_of(entry), error_words(errno));
    } else if (S_ISDIR(status.st_mode)) {
        folders.append(entry);
    } else if (S_ISLNK(status.st_mode)) {
        check_tree_link(entry, paths);
    } else if (!S_ISREG(status.st_mode)) {
        paths.report().add_note(text_of(entry), QStringLiteral("it is not a regular file; passed over"));
    } else {
        const open_file opened(entry);
        if (opened.error != 0) {
            paths.report().add_problem(text_of(entry), error_words(opened.error));
        }
    }
}

} // namespace

void check_evidence_file(const QByteArray& file, evidence_kind kind, evidence_paths& paths) {
    const reached_path reached = paths.follow(file);
    if (!reached.there) {
        return;
    }
    struct stat status = {};
    open_file opened(S_ISREG(reached.mode) ? reached.real : QByteArray());
    if (!S_ISREG(reached.mode) || (opened.error == 0 && ::fstat(opened.descriptor, &status) != 0)) {
        paths.report().add_problem(text_of(file), QStringLiteral("it is not a regular file"));
    } else if (opened.error != 0) {
        paths.report().add_problem(text_of(file), error_words(opened.error));
    } else {
        judge(file, kind, opened, status.st_size, paths.report());
    }
}

void check_evidence_tree(const QByteArray& top, evidence_paths& paths, const std::function<bool()>& cancelled) {
    const reached_path reached = paths.follow(top);
    if (!reached.there) {
        return;
    }
    if (!S_ISDIR(reached.mode)) {
        paths.report().add_problem(text_of(top), QStringLiteral("it is not a folder"));
        return;
    }
    QVector<QByteArray> folders{reached.real};
    while (!folders.isEmpty()) {
        const QByteArray folder = folders.takeLast();
        const folder_listing listing = list_folder(folder);
        if (listing.error != 0) {
            paths.report().add_problem(text_of(folder), error_words(listing.error));
        }
        for (const QByteArray& name : listing.names) {
            if (cancelled()) {
                return;
            }
            check_tree_entry(folder + '/' + name, folders, paths);
        }
    }
}
