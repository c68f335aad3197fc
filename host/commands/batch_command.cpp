// SPDX-License-Identifier: MIT
// The rooms below do the work; here it is said what came of it.
#include "host/commands/batch_command.h"

#include "host/batch/batch_merge.h"
#include "host/batch/batch_survey.h"
#include "host/batch/manifest_file.h"
#include "host/batch/one_source.h"
#include "host/batch/status_text.h"
#include "host/commands/examined_source.h"
#include "host/commands/extract_command.h"
#include "host/console.h"
#include "host/exit_codes.h"
#include "host/run/cancellation.h"

#include <QDir>
#include <QJsonDocument>

#include <algorithm>

namespace {

batch::extract_answer extract_one(const extract_options& options) {
    const int code = run_extract_command(options);
    return {code, last_said()};
}

// The line of the source that is meant; a null text, with the reason, when there is none.
QByteArray chosen_line(const batch_run_options& options, const QByteArray& text, QString& reason) {
    if (!options.id.isEmpty()) {
        reason = QStringLiteral("it has no source %1").arg(options.id);
        return batch::line_with_id(text, options.id);
    }
    bool is_number = false;
    const int told = qEnvironmentVariable("SLURM_ARRAY_TASK_ID").toInt(&is_number);
    const int index = options.index > 0 ? options.index : told;
    reason = index > 0 ? QStringLiteral("it has no line %1").arg(index)
                       : QStringLiteral("which source is meant is not clear: give --id or --index, or set "
                                        "SLURM_ARRAY_TASK_ID");
    return index > 0 ? batch::line_at(text, index) : QByteArray();
}

void say_all(const char* what, const QVector<batch::named_source>& sources) {
    for (const batch::named_source& one : sources) {
        say(QStringLiteral("%1: %2%3")
                .arg(QLatin1String(what), one.id,
                     one.reason.isEmpty() ? QString() : QStringLiteral(": ") + one.reason));
    }
}

bool is_failing(const batch::surveyed_source& one) {
    return one.state == batch::source_state::failed ||
           (one.state == batch::source_state::done && one.record.exit_code == exit_failures);
}

} // namespace

int run_batch_run_command(const batch_run_options& options) {
    QString reason;
    const QByteArray text = batch::manifest_text(options.manifest, reason);
    if (text.isNull()) {
        return refuse(exit_usage, QStringLiteral("the manifest %1: %2").arg(options.manifest, reason));
    }
    const QByteArray line = chosen_line(options, text, reason);
    if (line.isNull()) {
        return refuse(exit_usage, QStringLiteral("the manifest %1: %2").arg(options.manifest, reason));
    }
    const batch::manifest_source source = batch::source_of_line(line, reason);
    if (!reason.isEmpty()) {
        return refuse(exit_usage, QStringLiteral("the manifest %1: %2").arg(options.manifest, reason));
    }
    const QString out = QDir::cleanPath(QDir::current().absoluteFilePath(options.out));
    const batch::source_outcome outcome =
        batch::run_one_source({source, text, out, options.extract, options.force}, extract_one);
    if (outcome.exit_code != exit_complete) {
        return refuse(outcome.exit_code, outcome.message);
    }
    return print(printable(outcome.message) + QLatin1Char('\n')) ? exit_complete : exit_output;
}

int run_batch_status_command(const batch_status_options& options) {
    const batch::batch_survey survey = batch::survey_of(QDir::cleanPath(options.out));
    if (!survey.error.isEmpty()) {
        return refuse(exit_output, survey.error);
    }
    const bool failing = std::any_of(survey.sources.begin(), survey.sources.end(), is_failing);
    const bool printed = options.json ? print(QJsonDocument(status_object(survey.sources)).toJson())
                                      : print(status_table(survey.sources));
    return !printed ? exit_output : failing ? exit_failures : exit_complete;
}

int run_batch_merge_command(const batch_merge_options& options) {
    const batch::merge_answer answer =
        batch::merge_batch({QDir::cleanPath(options.out), options.merged, options.allow_partial}, is_cancelled);
    say_all("missing", answer.missing);
    say_all("failed", answer.failed);
    say_all("done with failures", answer.with_failures);
    if (is_cancelled()) {
        return refuse(cancel_exit_code(), QStringLiteral("cancelled"));
    }
    if (!answer.error.isEmpty()) {
        return refuse(answer.exit_code, answer.error);
    }
    const QString text = QStringLiteral("%1 rows of %2 sources in %3\n")
                             .arg(answer.rows)
                             .arg(answer.sources)
                             .arg(printable(options.merged));
    return print(text) ? answer.exit_code : exit_output;
}
