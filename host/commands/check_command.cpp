// SPDX-License-Identifier: MIT
// Workers read; here is only said what they tell.
#include "host/commands/check_command.h"

#include "host/commands/examined_source.h"
#include "host/console.h"
#include "host/exit_codes.h"
#include "host/record/evidence_json.h"
#include "host/run/cancellation.h"
#include "host/run/staged_names.h"
#include "host/run/supervisor.h"

#include <QDir>
#include <QJsonArray>
#include <QJsonDocument>
#include <QTemporaryDir>

namespace {

QString state_of(const evidence_record& file) {
    if (!file.health.problem.isEmpty()) {
        return file.health.problem;
    }
    if (!file.health.problems.isEmpty()) {
        return file.health.problems.first();
    }
    if (file.sha256.isEmpty()) {
        return QStringLiteral("it could not be read to its end");
    }
    return file.health.notes.isEmpty() ? QStringLiteral("sound") : file.health.notes.first();
}

QString as_text(const run_summary& summary) {
    QString text;
    for (const evidence_record& file : summary.evidence) {
        text += printable(file.path) + QLatin1Char('\n');
        text += QStringLiteral("  %1, %2 bytes, modified %3\n  SHA-256 %4\n  %5\n")
                    .arg(file.kind)
                    .arg(file.size)
                    .arg(file.modified, QString::fromLatin1(file.sha256), printable(state_of(file)));
    }
    return text + QStringLiteral("%1 files\n").arg(summary.evidence.size() + summary.evidence_not_listed);
}

QByteArray as_json(const run_summary& summary, int code) {
    QJsonObject document = summary_object(summary);
    QJsonArray files;
    for (const evidence_record& file : summary.evidence) {
        files.append(to_json(file));
    }
    for (const char* const of_a_run : {"database", "debug_log", "rows", "rows_added", "runs", "sources_found",
                                       "failures", "first_failures", "staged_copies", "output_troubles"}) {
        document.remove(QLatin1String(of_a_run));
    }
    document.insert(QStringLiteral("exit_code"), code);
    document.insert(QStringLiteral("evidence"), files);
    document.insert(QStringLiteral("evidence_not_listed"), summary.evidence_not_listed);
    return QJsonDocument(document).toJson(QJsonDocument::Indented);
}

int exit_code_of_check(const run_summary& summary) {
    const int code = exit_code_of(summary);
    return code == exit_nothing_found && !summary.evidence.isEmpty() ? exit_complete : code;
}

} // namespace

int run_check_command(const extract_options& options) {
    int code = exit_complete;
    const QByteArray source = find_source(options.source, code);
    if (source.isEmpty()) {
        return code;
    }
    run_summary summary;
    const QTemporaryDir folder(QDir::tempPath() + QStringLiteral("/cortana-check-XXXXXX"));
    const QString staging = folder.path() + QStringLiteral("/staged/");
    examined_source examined;
    if (!open_examined(options, source, staging, examined, code)) {
        return code;
    }
    const QList<system_account> accounts = choose_profiles(options, examined, summary.health, code);
    if (accounts.isEmpty()) {
        return code;
    }
    QList<QList<system_account>> groups;
    for (const system_account& account : accounts) {
        summary.profiles.append(account.system_user);
        groups.append(QList<system_account>{account});
    }
    summary.source = examined.is_staged ? examined.given : root_with_slash(source);
    summary.tables = options.tables;
    supervisor workers(options, root_with_slash(examined.root), QString(), groups, summary);
    workers.run();
    if (examined.is_staged) {
        tell_as_in_source(summary, examined.copies->outcome(), examined.given, root_with_slash(examined.root));
    }
    summary.signal = cancel_signal();
    if (!summary.fault.isEmpty()) {
        return refuse(exit_internal, summary.fault);
    }
    say_findings(summary.health, options.quiet);
    say_losses(summary);
    code = exit_code_of_check(summary);
    const bool printed = options.json ? print(as_json(summary, code)) : options.quiet || print(as_text(summary));
    return printed ? code : refuse(exit_output, QStringLiteral("standard output cannot be written"));
}
