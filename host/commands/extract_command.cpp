// SPDX-License-Identifier: MIT
// The steps in their order: source, result folder, profiles, lock, workers, summary.
#include "host/commands/extract_command.h"

#include "host/console.h"
#include "host/exit_codes.h"
#include "host/health/source_health.h"
#include "host/run/cancellation.h"
#include "host/run/plugin_library.h"
#include "host/run/run_lock.h"
#include "host/run/run_record.h"
#include "host/run/supervisor.h"
#include "source/native_names.h"
#include "source/real_location.h"

#include <QDir>
#include <QElapsedTimer>
#include <QFileInfo>
#include <QJsonDocument>

#include <cerrno>
#include <sys/stat.h>
#include <unistd.h>

namespace {

int refuse(int code, const QString& message) {
    say(message);
    return code;
}

// The source's real location; on refusal empty, with the exit code set.
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
    if (!S_ISDIR(status.st_mode)) {
        code = refuse(exit_usage, QStringLiteral("the source %1 is not a folder").arg(source));
        return {};
    }
    return real;
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

// The runs of the plugin: one for each account, or one for all.
QList<QList<system_account>> group(const QList<system_account>& accounts, bool all_at_once) {
    if (all_at_once) {
        return {accounts};
    }
    QList<QList<system_account>> groups;
    for (const system_account& account : accounts) {
        groups.append(QList<system_account>{account});
    }
    return groups;
}

void say_losses(const run_summary& summary) {
    for (const step_loss& loss : summary.losses) {
        const QString table = loss.table.isEmpty() ? QStringLiteral("no table") : loss.table;
        const QString file = loss.file.isEmpty() ? QString() : QStringLiteral(" (%1)").arg(loss.file);
        say(QStringLiteral("not finished: profile %1, %2%3: %4").arg(loss.profile, table, file, loss.reason));
    }
}

int report(const run_summary& summary, const extract_options& options) {
    say_findings(summary.health, options.quiet);
    say_losses(summary);
    if (!options.quiet && !summary.sandbox.note.isEmpty()) {
        say(QStringLiteral("note: workers are not fully confined: ") + summary.sandbox.note);
    }
    for (const QString& trouble : summary.output_troubles) {
        say(trouble);
    }
    for (const QString& failure : summary.log.first_failures) {
        say(QStringLiteral("failure: ") + failure);
    }
    const int code = exit_code_of(summary);
    if (summary.signal != 0) {
        say(summary.not_examined.isEmpty()
                ? QStringLiteral("cancelled")
                : QStringLiteral("cancelled; not examined: ") + summary.not_examined.join(QStringLiteral(", ")));
    }
    if (code == exit_nothing_found) {
        say(QStringLiteral("no Cortana data, web cache or registry hive was found in any chosen profile"));
    }
    bool printed = true;
    if (options.json) {
        printed = print(QJsonDocument(summary_object(summary)).toJson(QJsonDocument::Indented));
    } else if (!options.quiet) {
        printed = print(summary_table(summary));
    }
    return printed ? code : refuse(exit_output, QStringLiteral("standard output cannot be written"));
}

// The profiles to examine; empty with the exit code set when there are none.
QList<system_account> choose_profiles(const extract_options& options, source_health& health,
                                      const health_report& findings, int& code) {
    struct stat status = {};
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

} // namespace

int run_extract_command(const extract_options& options) {
    QElapsedTimer elapsed;
    elapsed.start();
    const QDateTime started = QDateTime::currentDateTimeUtc();
    int code = exit_complete;
    const QByteArray source = find_source(options.source, code);
    if (source.isEmpty()) {
        return code;
    }
    run_summary summary;
    summary.output = settle_output(options.result, options.log_file, source);
    if (summary.output.refused != 0) {
        return refuse(summary.output.refused, summary.output.reason);
    }
    const std::function<bool()> cancelled = is_cancelled;
    source_health folders(source, options.tables, cancelled, summary.health);
    const QList<system_account> accounts = choose_profiles(options, folders, summary.health, code);
    if (accounts.isEmpty()) {
        return code;
    }
    const QString library = plugin_library_file(options.library);
    if (!QFileInfo(library).isFile()) {
        return refuse(exit_internal, QStringLiteral("the plugin cannot be loaded: there is no file %1").arg(library));
    }
    run_lock lock;
    QString reason;
    if (!QDir().mkpath(summary.output.folder) || !lock.take(summary.output.folder, reason)) {
        return refuse(exit_output, QStringLiteral("the result folder %1 cannot be used: %2")
                                       .arg(summary.output.folder, reason.isEmpty() ? error_words(errno) : reason));
    }
    for (const system_account& account : accounts) {
        summary.profiles.append(account.system_user);
    }
    summary.source = root_with_slash(source);
    summary.all_profiles = options.all_profiles;
    summary.tables = options.tables;
    if (make_result_database(summary.output.database, reason)) {
        supervisor workers(options, summary.source, library, group(accounts, options.all_profiles), summary);
        workers.run();
    } else {
        summary.not_examined = summary.profiles;
        summary.add_trouble(
            QStringLiteral("the result database %1 cannot be used: %2").arg(summary.output.database, reason));
    }
    summary.signal = cancel_signal();
    summary.milliseconds = elapsed.elapsed();
    if (!summary.fault.isEmpty()) {
        return refuse(exit_internal, summary.fault);
    }
    if (!write_run_record(summary, {options.words, started, QDateTime::currentDateTimeUtc(), options.sandbox},
                          reason)) {
        summary.add_trouble(reason);
    }
    return report(summary, options);
}
