// SPDX-License-Identifier: MIT
// The steps in their order: source, result folder, profiles, lock, workers, summary.
#include "host/commands/extract_command.h"

#include "contract/table_names.h"
#include "host/commands/examined_source.h"
#include "host/commands/export_outcome.h"
#include "host/console.h"
#include "host/exit_codes.h"
#include "host/run/cancellation.h"
#include "host/run/plugin_library.h"
#include "host/run/run_lock.h"
#include "host/run/run_record.h"
#include "host/run/staged_names.h"
#include "host/run/supervisor.h"
#include "source/native_names.h"

#include <QDir>
#include <QElapsedTimer>
#include <QFileInfo>
#include <QJsonDocument>

#include <cerrno>

namespace {

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

// The exports that were asked for, after everything else.
struct wanted_exports {
    export_request request;
    export_outcome outcome;
    bool are_done = false;
};

// Reads the result database only, so it needs no worker.
wanted_exports write_exports(const extract_options& options, run_summary& summary) {
    wanted_exports exports;
    if (options.export_formats.isEmpty() || summary.signal != 0) {
        return exports;
    }
    exports.request.database = summary.output.database;
    exports.request.folder = export_folder_beside(summary.output.database);
    exports.request.formats = options.export_formats;
    exports.request.tables = result_table_names();
    exports.outcome = run_export(exports.request, is_cancelled);
    exports.are_done = exports.outcome.error.isEmpty();
    if (exports.outcome.cancelled) {
        summary.signal = cancel_signal();
    } else if (!exports.are_done) {
        summary.add_trouble(QStringLiteral("no exports: ") + exports.outcome.error);
    }
    return exports;
}

bool print_outcome(const run_summary& summary, const extract_options& options, const wanted_exports& exports) {
    if (options.json) {
        QJsonObject document = summary_object(summary);
        if (!exports.request.formats.isEmpty()) {
            document.insert(QStringLiteral("exports"), export_object(exports.request, exports.outcome));
        }
        return print(QJsonDocument(document).toJson(QJsonDocument::Indented));
    }
    return options.quiet || (print(summary_table(summary)) &&
                             (!exports.are_done || print(export_text(exports.request, exports.outcome))));
}

int report(const run_summary& summary, const extract_options& options, const wanted_exports& exports) {
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
    if (!summary.staged_copies.isEmpty() && !options.keep_staged) {
        say(QStringLiteral("the run was not complete: the copies that rows come from are left in ") +
            summary.staged_copies);
    }
    if (code == exit_nothing_found) {
        say(QStringLiteral("no Cortana data, web cache or registry hive was found in any chosen profile"));
    }
    return print_outcome(summary, options, exports)
               ? code
               : refuse(exit_output, QStringLiteral("standard output cannot be written"));
}

// Owns what this run stages: of a run that leaves no record, nothing stays.
class staged_copies {
public:
    staged_copies(const examined_source& source, const QString& staging) : examined(source), folder(staging) {}
    ~staged_copies() { remove_unless(stays); }
    staged_copies(const staged_copies&) = delete;
    staged_copies& operator=(const staged_copies&) = delete;

    // Copies are worth their room while there is something to be looked into: not after a complete run.
    void settle(bool are_wanted, run_summary& summary) {
        const int code = exit_code_of(summary);
        stays = examined.is_staged && (are_wanted || (code != exit_complete && code != exit_nothing_found));
        summary.staged_copies = stays ? folder : QString();
        remove_unless(stays);
    }

private:
    void remove_unless(bool keep) const {
        if (examined.copies && !keep) { // else those of an earlier run may stand there, or of one that runs now
            remove_staged(folder);
        }
    }

    const examined_source& examined;
    const QString& folder;
    bool stays = false;
};

// Folder and lock of the result. False: the exit code is set and the reason said.
bool prepare_output(const output_location& output, run_lock& lock, int& code) {
    QString reason;
    if (lock.is_taken() || (QDir().mkpath(output.folder) && lock.take(output.folder, reason))) {
        return true;
    }
    code = refuse(exit_output, QStringLiteral("the result folder %1 cannot be used: %2")
                                   .arg(output.folder, reason.isEmpty() ? error_words(errno) : reason));
    return false;
}

// The folders of a path that are not there yet, the last one first.
QStringList missing_folders(const QString& folder) {
    QStringList missing;
    for (QString path = QDir::cleanPath(folder); !QFileInfo::exists(path); path = QFileInfo(path).path()) {
        missing.append(path);
    }
    return missing;
}

// A source that is refused leaves nothing behind.
void take_back_output(const output_location& output, const QStringList& made) {
    remove_staged(output.staged);
    if (made.contains(QDir::cleanPath(output.folder))) {
        run_lock::remove(output.folder);
    }
    for (const QString& folder : made) {
        QDir().rmdir(folder);
    }
}

// Profiles and the root that they are read from. An empty list: the exit code is set and the reason said.
QList<system_account> open_profiles(const extract_options& options, const QByteArray& source, run_summary& summary,
                                    run_lock& lock, examined_source& examined, int& code) {
    const bool needs_folder = !is_plain_folder(source, options);
    const QStringList made = missing_folders(summary.output.folder);
    if (needs_folder && !prepare_output(summary.output, lock, code)) {
        return {};
    }
    if (!open_examined(options, source, summary.output.staged, examined, code)) {
        take_back_output(summary.output, made);
        return {};
    }
    const QList<system_account> accounts = choose_profiles(options, examined, summary.health, code);
    if (accounts.isEmpty() || !prepare_output(summary.output, lock, code)) {
        return {};
    }
    return accounts;
}

void extract_into(run_summary& summary, const extract_options& options, const examined_source& examined,
                  const QString& library, const QList<system_account>& accounts) {
    QString reason;
    const QString root = root_with_slash(examined.root);
    if (make_result_database(summary.output.database, reason)) {
        staged_source* const copies = examined.is_staged ? examined.copies.get() : nullptr;
        supervisor workers(options, root, library, group(accounts, options.all_profiles), summary, copies);
        workers.run();
    } else {
        summary.not_examined = summary.profiles;
        summary.add_trouble(
            QStringLiteral("the result database %1 cannot be used: %2").arg(summary.output.database, reason));
    }
    if (examined.is_staged) {
        const QString trouble = examined.copies->end_questions();
        if (!trouble.isEmpty()) {
            summary.add_trouble(trouble);
        }
        tell_as_in_source(summary, examined.copies->outcome(), examined.given, root);
    }
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
    const QString library = plugin_library_file(options.library);
    if (!QFileInfo(library).isFile()) {
        return refuse(exit_internal, QStringLiteral("the plugin cannot be loaded: there is no file %1").arg(library));
    }
    run_lock lock;
    examined_source examined;
    staged_copies copies(examined, summary.output.staged);
    const QList<system_account> accounts = open_profiles(options, source, summary, lock, examined, code);
    if (accounts.isEmpty()) {
        return code;
    }
    for (const system_account& account : accounts) {
        summary.profiles.append(account.system_user);
    }
    summary.source = examined.is_staged ? examined.given : root_with_slash(source);
    summary.all_profiles = options.all_profiles;
    summary.tables = options.tables;
    extract_into(summary, options, examined, library, accounts);
    summary.signal = cancel_signal();
    summary.milliseconds = elapsed.elapsed();
    if (!summary.fault.isEmpty()) {
        return refuse(exit_internal, summary.fault);
    }
    copies.settle(options.keep_staged, summary);
    QString reason;
    if (!write_run_record(summary, {options.words, started, QDateTime::currentDateTimeUtc(), options.sandbox},
                          reason)) {
        summary.add_trouble(reason);
    }
    const wanted_exports exports = write_exports(options, summary);
    return report(summary, options, exports);
}
