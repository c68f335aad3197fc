// SPDX-License-Identifier: MIT
// Only folders are looked at here, no file is opened: workers do that.
#include "host/commands/examined_source.h"

#include "host/console.h"
#include "host/exit_codes.h"
#include "host/health/source_health.h"
#include "host/run/cancellation.h"
#include "source/native_names.h"
#include "source/real_location.h"

#include <QFile>

#include <cerrno>
#include <functional>
#include <sys/stat.h>

int refuse(int code, const QString& message) {
    say(message);
    return code;
}

QByteArray find_source(const QString& source, int& code) {
    struct stat status = {};
    const QByteArray real = real_location(QFile::encodeName(source));
    if (real.isEmpty() || ::stat(real.constData(), &status) != 0) {
        const int error = errno;
        const bool missing = error == ENOENT || error == ENOTDIR;
        code = refuse(missing ? exit_nothing_found : exit_failures,
                      QStringLiteral("could not read: %1: %2").arg(source, error_words(error)));
        return {};
    }
    if (!S_ISDIR(status.st_mode) && !S_ISREG(status.st_mode)) {
        code = refuse(
            exit_usage,
            QStringLiteral("the source %1 is not a folder, an image or an archive that can be read").arg(source));
        return {};
    }
    return real;
}

bool open_examined(const extract_options& options, const QByteArray& source, const QString& staging,
                   examined_source& examined, int& code) {
    examined.given = QFile::decodeName(source);
    examined.root = source;
    if (is_plain_folder(source, options)) {
        return true;
    }
    examined.copies = std::make_unique<staged_source>(source, staging, options);
    examined.copies->stage();
    const staging_outcome& staged = examined.copies->outcome();
    if (is_cancelled() && staged.refused == exit_failures) {
        code = refuse(cancel_exit_code(), QStringLiteral("cancelled"));
        return false;
    }
    if (staged.refused != 0) {
        code = refuse(staged.refused, staged.refused == exit_failures
                                          ? QStringLiteral("could not read: %1: %2").arg(options.source, staged.reason)
                                          : QStringLiteral("the source %1: %2").arg(options.source, staged.reason));
        return false;
    }
    examined.is_staged = !staged.as_given;
    if (examined.is_staged) {
        examined.root = real_location(QFile::encodeName(staging));
    }
    return true;
}

QString root_with_slash(const QByteArray& source) {
    return QFile::decodeName(source == "/" ? source : source + '/');
}

void say_findings(const health_report& health, bool quiet) {
    for (const finding& one : health.problems) {
        say(QStringLiteral("could not read: %1: %2").arg(one.path, one.reason));
    }
    if (health.problem_count > health.problems.size()) {
        say(QStringLiteral("could not read: %1 more").arg(health.problem_count - health.problems.size()));
    }
    for (const finding& one : quiet ? QVector<finding>() : health.notes) {
        say(QStringLiteral("note: %1: %2").arg(one.path, one.reason));
    }
    if (!quiet && health.note_count > health.notes.size()) {
        say(QStringLiteral("note: %1 more notes").arg(health.note_count - health.notes.size()));
    }
}

void say_losses(const run_summary& summary) {
    for (const step_loss& loss : summary.losses) {
        const QString table = loss.table.isEmpty() ? QStringLiteral("no table") : loss.table;
        const QString file = loss.file.isEmpty() ? QString() : QStringLiteral(" (%1)").arg(loss.file);
        say(QStringLiteral("not finished: profile %1, %2%3: %4").arg(loss.profile, table, file, loss.reason));
    }
}

namespace {

// The profiles that were staged: in the staging folder stand names of others, too.
QList<system_account> staged_profiles(const staging_outcome& staged, health_report& findings) {
    QList<system_account> accounts;
    for (const QByteArray& name : staged.profiles) {
        if (is_utf8(name)) {
            accounts.append({QFile::decodeName(name), QStringLiteral("")});
        } else {
            findings.add_problem(shown_path(name), QStringLiteral("its name is not UTF-8: it cannot be passed on"));
        }
    }
    return accounts;
}

QString why_no_profiles(const extract_options& options, const examined_source& source, bool has_users) {
    return source.is_staged ? QStringLiteral("the source %1 holds no profile").arg(options.source)
           : has_users ? QStringLiteral("%1 holds no profile").arg(shown_path(source.root) + QStringLiteral("/Users"))
                       : QStringLiteral("the source %1 holds no folder Users").arg(options.source);
}

} // namespace

QList<system_account> choose_profiles(const extract_options& options, const examined_source& source,
                                      health_report& findings, int& code) {
    struct stat status = {};
    const std::function<bool()> cancelled = is_cancelled;
    source_health health(source.root, options.tables, cancelled, findings);
    const bool has_users = ::lstat(health.users_folder().constData(), &status) == 0;
    if (!options.users.isEmpty() && has_users) {
        return options.users;
    }
    const QList<system_account> accounts =
        source.is_staged ? staged_profiles(source.copies->outcome(), findings) : health.profiles();
    if (!accounts.isEmpty() && options.users.isEmpty()) {
        return accounts;
    }
    health_report all = findings;
    if (source.copies) {
        all.add(source.copies->outcome().findings);
    }
    say_findings(all, options.quiet);
    code =
        all.problem_count > 0 ? exit_failures : refuse(exit_nothing_found, why_no_profiles(options, source, has_users));
    return {};
}
