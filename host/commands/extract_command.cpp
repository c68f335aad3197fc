// SPDX-License-Identifier: MIT
// The steps in their order: source, result folder, library, profiles, evidence, runs, debug log, summary.
#include "host/commands/extract_command.h"

#include "host/console.h"
#include "host/exit_codes.h"
#include "host/health/source_health.h"
#include "host/run/cancellation.h"
#include "host/run/plugin_run.h"
#include "host/run/summary.h"
#include "source/native_names.h"
#include "source/real_location.h"

#include <QDir>
#include <QElapsedTimer>
#include <QFileInfo>

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

// The runs to make: one for each account, or one for all. Only the first one clears.
QList<run_request> plan_runs(const extract_options& options, const QString& root,
                             const QList<system_account>& accounts) {
    if (options.all_profiles) {
        return {{root, accounts, options.clear}};
    }
    QList<run_request> runs;
    for (const system_account& account : accounts) {
        runs.append({root, {account}, options.clear && runs.isEmpty()});
    }
    return runs;
}

void add_outcome(const run_outcome& outcome, run_summary& summary) {
    if (!outcome.trouble.isEmpty()) {
        summary.output_troubles.append(
            QStringLiteral("the result database %1 cannot be used: %2").arg(summary.output.database, outcome.trouble));
    } else if (outcome.rows_told != outcome.rows_found) {
        summary.output_troubles.append(QStringLiteral("rows were lost: the plugin wrote %1, the database %2 holds %3")
                                           .arg(outcome.rows_told)
                                           .arg(summary.output.database)
                                           .arg(outcome.rows_found));
    }
}

// Returns how many runs must have logged their end.
int make_runs(const plugin_library& library, const extract_options& options, const QList<run_request>& runs,
              run_summary& summary) {
    const bool show_progress = !options.quiet && !options.log_terminal && ::isatty(STDERR_FILENO) == 1;
    progress_line progress(options.tables, show_progress);
    int made = 0;
    for (const run_request& request : runs) {
        if (is_cancelled() || !summary.output_troubles.isEmpty()) {
            for (const system_account& account : request.accounts) {
                summary.not_examined.append(account.system_user);
            }
            continue;
        }
        progress.begin_run(request.accounts.size() == 1 ? request.accounts.first().system_user
                                                        : QStringLiteral("all profiles"));
        const run_outcome outcome = run_plugin(library, options, summary.output, request, progress, summary.rows);
        add_outcome(outcome, summary);
        made += outcome.extracted && !is_cancelled() ? 1 : 0;
    }
    progress.clear();
    return made;
}

void read_run_log(qint64 offset, int runs, run_summary& summary) {
    if (summary.not_examined.size() == summary.profiles.size() && !QFile::exists(summary.output.log)) {
        return; // cancelled before the first run
    }
    if (!read_log(summary.output.log, offset, summary.log)) {
        summary.output_troubles.append(QStringLiteral("the debug log %1 cannot be read").arg(summary.output.log));
    } else if (summary.log.ended_runs < runs) {
        summary.output_troubles.append(
            QStringLiteral("the debug log %1 is not whole: it could not be written").arg(summary.output.log));
    }
    if (!summary.log.output_trouble.isEmpty()) {
        summary.output_troubles.append(QStringLiteral("the result database %1 cannot be written: %2")
                                           .arg(summary.output.database, summary.log.output_trouble));
    }
}

int report(const run_summary& summary, const extract_options& options) {
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
        printed = print(summary_json(summary));
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
    const plugin_library library = load_plugin_library(options.library);
    if (library.create == nullptr) {
        return refuse(exit_internal, QStringLiteral("the plugin cannot be loaded: ") + library.reason);
    }
    const std::function<bool()> cancelled = is_cancelled;
    source_health health(source, options.tables, cancelled, summary.health);
    const QList<system_account> accounts = choose_profiles(options, health, summary.health, code);
    if (accounts.isEmpty()) {
        return code;
    }
    for (const system_account& account : accounts) {
        summary.profiles.append(account.system_user);
        health.check_account(account);
    }
    say_findings(summary.health, options.quiet);
    if (!QDir().mkpath(summary.output.result)) {
        return refuse(exit_output, QStringLiteral("the result folder %1 cannot be made").arg(summary.output.result));
    }
    summary.source = root_with_slash(source);
    summary.all_profiles = options.all_profiles;
    summary.tables = options.tables;
    const qint64 log_size = QFileInfo(summary.output.log).size();
    const int runs = make_runs(library, options, plan_runs(options, summary.source, accounts), summary);
    summary.signal = cancel_signal();
    read_run_log(log_size, runs, summary);
    summary.milliseconds = elapsed.elapsed();
    return report(summary, options);
}
