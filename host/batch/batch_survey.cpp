// SPDX-License-Identifier: MIT
// A result counts before a lock, a lock before the note of an earlier failure.
#include "host/batch/batch_survey.h"

#include "host/batch/manifest_file.h"
#include "host/batch/publish.h"
#include "host/batch/source_lock.h"
#include "host/exit_codes.h"

#include <QFileInfo>

namespace batch {
namespace {

bool read_record(const QString& file, batch_record& record) {
    return record_of(object_in(file), record);
}

// What there is when no result is in place.
void judge_unfinished(const out_folder& out, surveyed_source& one) {
    QString holder;
    const lock_state lock = look_at_lock(out.lock(one.source.id), holder);
    if (lock == lock_state::held) {
        one.state = source_state::running;
        one.reason = holder;
    } else if (read_record(out.failure(one.source.id), one.record)) {
        one.state = source_state::failed;
        one.reason = one.record.reason;
        one.retryable = is_retryable(one.record.exit_code);
    } else if (lock == lock_state::left_behind) {
        one.state = source_state::failed;
        one.reason = QStringLiteral("killed, or its machine was lost: %1").arg(holder);
        one.retryable = true;
    }
}

surveyed_source judge(const out_folder& out, const manifest_source& source) {
    surveyed_source one;
    one.source = source;
    if (!QFileInfo::exists(out.result(source.id))) {
        judge_unfinished(out, one);
        return one;
    }
    const bool known = read_record(out.record(source.id), one.record) && one.record.id == source.id;
    one.state = known ? source_state::done : source_state::failed;
    one.reason = known ? one.record.reason : QStringLiteral("%1 is no result of a batch").arg(out.result(source.id));
    return one;
}

} // namespace

batch_survey survey_of(const QString& out) {
    batch_survey survey;
    const out_folder folder(out);
    const QByteArray text = manifest_text(folder.manifest(), survey.error);
    if (text.isNull()) {
        survey.error = QStringLiteral("%1 holds no batch: %2: %3").arg(out, folder.manifest(), survey.error);
        return survey;
    }
    const manifest kept = read_manifest(text);
    if (!kept.problems.isEmpty()) {
        survey.error = QStringLiteral("%1: %2").arg(folder.manifest(), kept.problems.first());
        return survey;
    }
    for (const manifest_source& source : kept.sources) {
        survey.sources.append(judge(folder, source));
    }
    return survey;
}

} // namespace batch
