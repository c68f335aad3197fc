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
    examined.has_copies = true;
    examined.staging = stage_source(source, staging, options);
    const staging_outcome& staged = examined.staging;
    if (is_cancelled() && staged.refused == exit_failures) {
        code = refuse(128 + cancel_signal(), QStringLiteral("cancelled"));
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

QList<system_account> choose_profiles(const extract_options& options, const QByteArray& source, health_report& findings,
                                      int& code) {
    struct stat status = {};
    const std::function<bool()> cancelled = is_cancelled;
    source_health health(source, options.tables, cancelled, findings);
    const QByteArray users = health.users_folder();
    if (!options.users.isEmpty() && ::lstat(users.constData(), &status) == 0) {
        return options.users;
    }
    const QList<system_account> accounts = health.profiles();
    if (!accounts.isEmpty() && options.users.isEmpty()) {
        return accounts;
    }
    say_findings(findings, options.quiet);
    const bool unreadable = findings.problem_count > 0;
    code = unreadable ? exit_failures
                      : refuse(exit_nothing_found,
                               ::lstat(users.constData(), &status) == 0
                                   ? QStringLiteral("%1 holds no profile").arg(shown_path(users))
                                   : QStringLiteral("the source %1 holds no folder Users").arg(options.source));
    return {};
}
