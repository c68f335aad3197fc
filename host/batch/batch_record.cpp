// SPDX-License-Identifier: MIT
// docs/batch.md describes the fields.
#include "host/batch/batch_record.h"

#include "contract/table_names.h"
#include "host/exit_codes.h"
#include "host/run/account_name.h"

#include <QJsonArray>

namespace batch {
namespace {

constexpr int record_format = 1;

QString key(const char* name) {
    return QLatin1String(name);
}

QJsonValue text_or_null(const QString& text) {
    return text.isEmpty() ? QJsonValue() : QJsonValue(text);
}

qint64 whole(const QJsonValue& value) {
    return static_cast<qint64>(value.toDouble());
}

// The first thing that the run was not content with.
QString reason_of(const QJsonObject& run) {
    const QJsonArray troubles = run[key("output_troubles")].toArray();
    const QJsonArray losses = run[key("losses")].toArray();
    const QJsonArray problems = run[key("problems")].toArray();
    const QJsonArray failures = run[key("first_failures")].toArray();
    if (!troubles.isEmpty()) {
        return troubles.at(0).toString();
    }
    if (!losses.isEmpty()) {
        const QJsonObject loss = losses.at(0).toObject();
        return QStringLiteral("not finished: profile %1, %2: %3")
            .arg(loss[key("profile")].toString(), loss[key("table")].toString(), loss[key("reason")].toString());
    }
    if (!problems.isEmpty()) {
        const QJsonObject problem = problems.at(0).toObject();
        return QStringLiteral("could not read: %1: %2")
            .arg(problem[key("path")].toString(), problem[key("reason")].toString());
    }
    return failures.isEmpty() ? run[key("outcome")].toString() : failures.at(0).toString();
}

} // namespace

QJsonObject arguments_of(const manifest_source& source, const extract_options& options) {
    return {{key("type"), source.type},
            {key("volume"), source.volume},
            {key("number"), source.number},
            {key("profiles"), QJsonArray::fromStringList(source.profiles)},
            {key("tables"), QJsonArray::fromStringList(source.tables)},
            {key("all_profiles"), options.all_profiles},
            {key("archive_limit"), options.archive_limit},
            {key("hive_logs"), options.hive_logs},
            {key("os_scheme"), options.os_scheme},
            {key("step_timeout"), options.limits.silence_seconds},
            {key("step_limit"), options.limits.step_seconds},
            {key("memory_limit"), options.limits.memory},
            {key("output_limit"), options.limits.output}};
}

extract_options options_for(const manifest_source& source, const extract_options& options, const QString& result) {
    extract_options own = options;
    own.source = source.path;
    own.result = result;
    own.source_type = source.type;
    own.volume = source.volume;
    own.source_number = source.number;
    own.tables = source.tables.isEmpty() ? result_table_names() : source.tables;
    own.users.clear();
    for (const QString& profile : source.profiles) {
        own.users.append(account_of(profile).value_or(system_account()));
    }
    own.log_file.clear();
    own.keep_staged = false;
    own.clear = false;
    own.json = false;
    own.quiet = true;
    return own;
}

QStringList differences(const batch_record& done, const batch_record& wanted) {
    QStringList list;
    if (!is_same_evidence(done.evidence, wanted.evidence)) {
        list.append(QStringLiteral("the evidence"));
    }
    if (done.version != wanted.version) {
        list.append(QStringLiteral("version %1").arg(done.version));
    }
    for (const QString& name : wanted.arguments.keys()) {
        if (done.arguments[name] != wanted.arguments[name]) {
            list.append(name);
        }
    }
    return list;
}

void take_run_record(const QJsonObject& run, batch_record& record) {
    record.rows = whole(run[key("rows_added")]);
    record.evidence_bytes = 0;
    const QJsonArray evidence = run[key("evidence")].toArray();
    for (const QJsonValue& file : evidence) {
        record.evidence_bytes += whole(file[key("size")]);
    }
    record.database_sha256.clear();
    record.links_sha256.clear();
    const QJsonArray written = run[key("written")].toArray();
    for (const QJsonValue& file : written) {
        const QString path = file[key("path")].toString();
        const QString digest = file[key("sha256")].toString();
        if (path.endsWith(QStringLiteral("_links.sqlite"))) {
            record.links_sha256 = digest;
        } else if (path.endsWith(QStringLiteral(".sqlite"))) {
            record.database_sha256 = digest;
        }
    }
    record.reason = record.exit_code == exit_complete ? QString() : reason_of(run);
}

QJsonObject moved_run_record(QJsonObject run, const QString& from, const QString& to) {
    const auto moved = [&](const QJsonValue& path) -> QJsonValue {
        const QString text = path.toString();
        return text.startsWith(from + QLatin1Char('/')) ? QJsonValue(to + text.mid(from.size())) : path;
    };
    for (const char* const name : {"database", "debug_log"}) {
        run.insert(key(name), moved(run[key(name)]));
    }
    QJsonArray written;
    const QJsonArray before = run[key("written")].toArray();
    for (const QJsonValue& file : before) {
        QJsonObject entry = file.toObject();
        entry.insert(key("path"), moved(entry[key("path")]));
        written.append(entry);
    }
    run.insert(key("written"), written);
    return run;
}

bool is_retryable(int exit_code) {
    constexpr int first_signal = 128;
    return exit_code == exit_internal || exit_code == exit_output || exit_code >= first_signal;
}

QJsonObject to_json(const batch_record& record) {
    return {{key("format"), record_format},
            {key("id"), record.id},
            {key("evidence"), to_json(record.evidence)},
            {key("version"), record.version},
            {key("arguments"), record.arguments},
            {key("exit_code"), record.exit_code},
            {key("reason"), text_or_null(record.reason)},
            {key("rows"), record.rows},
            {key("evidence_bytes"), record.evidence_bytes},
            {key("milliseconds"), record.milliseconds},
            {key("started"), record.started},
            {key("host"), record.host},
            {key("database_sha256"), text_or_null(record.database_sha256)},
            {key("links_sha256"), text_or_null(record.links_sha256)}};
}

bool record_of(const QJsonObject& object, batch_record& record) {
    const auto text = [&](const char* name) { return object[key(name)].toString(); };
    const auto number = [&](const char* name) { return whole(object[key(name)]); };
    record = {text("id"),
              evidence_state_of(object[key("evidence")].toObject()),
              text("version"),
              object[key("arguments")].toObject(),
              object[key("exit_code")].toInt(exit_internal),
              text("reason"),
              number("rows"),
              number("evidence_bytes"),
              number("milliseconds"),
              text("started"),
              text("host"),
              text("database_sha256"),
              text("links_sha256")};
    return object[key("format")].toInt() == record_format && !record.id.isEmpty();
}

} // namespace batch
