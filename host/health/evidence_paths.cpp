// SPDX-License-Identifier: MIT
// lstat(2) first, so that a link is never followed before its end is known to lie below the source.
#include "host/health/evidence_paths.h"

#include "source/folder_listing.h"
#include "source/native_names.h"
#include "source/real_location.h"

#include <cerrno>
#include <sys/stat.h>

reached_path evidence_paths::follow(const QByteArray& path) {
    const auto refuse = [&](const QString& reason) {
        findings.add_problem(shown_path(path), reason);
        return reached_path();
    };
    struct stat status = {};
    if (::lstat(path.constData(), &status) != 0) {
        if (errno != ENOENT) {
            return refuse(error_words(errno));
        }
        report_other_case(path);
        return {};
    }
    if (!S_ISLNK(status.st_mode)) {
        return {true, path, status.st_mode};
    }
    const QByteArray real = real_location(path);
    if (real.isEmpty()) {
        return refuse(QStringLiteral("it is a link that leads nowhere"));
    }
    if (!is_at_or_below(real, source_root)) {
        return refuse(QStringLiteral("it is a link that leads out of the source"));
    }
    if (::lstat(real.constData(), &status) != 0) {
        return refuse(error_words(errno));
    }
    return {true, real, status.st_mode};
}

bool evidence_paths::enter(const QByteArray& folder) {
    const auto known = entered.constFind(folder);
    if (known != entered.constEnd()) {
        return *known;
    }
    const bool usable = look_into(folder);
    entered.insert(folder, usable);
    return usable;
}

bool evidence_paths::look_into(const QByteArray& folder) {
    const reached_path reached = follow(folder);
    if (!reached.there) {
        return false;
    }
    if (!S_ISDIR(reached.mode)) {
        findings.add_problem(shown_path(folder), QStringLiteral("it is not a folder"));
        return false;
    }
    const int error = list_folder(reached.real).error;
    if (error != 0) {
        findings.add_problem(shown_path(folder), error_words(error));
    }
    return error == 0;
}

bool evidence_paths::enter_parents(const QByteArray& base, const QByteArray& below) {
    if (!enter(base)) {
        return false;
    }
    for (int slash = below.indexOf('/'); slash >= 0; slash = below.indexOf('/', slash + 1)) {
        if (!enter(base + '/' + below.left(slash))) {
            return false;
        }
    }
    return true;
}

void evidence_paths::report_other_case(const QByteArray& missing) {
    const int slash = missing.lastIndexOf('/');
    const QString wanted = shown_path(missing.mid(slash + 1));
    for (const auto& [name, type] : list_folder(missing.left(slash)).names) {
        if (shown_path(name).compare(wanted, Qt::CaseInsensitive) == 0) {
            findings.add_problem(shown_path(missing.left(slash + 1) + name),
                                 QStringLiteral("it is looked for as %1, in this upper and lower case").arg(wanted));
            return;
        }
    }
}
