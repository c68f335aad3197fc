// SPDX-License-Identifier: MIT
// Texts travel as JSON, so names of evidence with any characters in them stay one line.
#include "host/run/worker_protocol.h"

#include "contract/result_layout.h"
#include "host/record/evidence_json.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <algorithm>
#include <iterator>

namespace {

constexpr const char* kind_names[] = {"unknown", "confined",  "evidence", "looked_over", "checked",
                                      "planned", "staged",    "waiting",  "as_given",    "refused",
                                      "rows",    "step_done", "linked",   "failed",      "ended"};

QString key(const char* name) {
    return QLatin1String(name);
}

QJsonArray to_json(const QVector<finding>& findings) {
    QJsonArray list;
    for (const finding& one : findings) {
        list.append(QJsonArray{one.path, one.reason});
    }
    return list;
}

// Into a report through its own door, which keeps a bounded number of them.
template <class Add>
void take_findings(const QJsonArray& list, const Add& add) {
    for (const QJsonValue& one : list) {
        add(one.toArray().at(0).toString(), one.toArray().at(1).toString());
    }
}

QJsonObject to_json(const health_report& health) {
    return {{key("problems"), to_json(health.problems)},
            {key("problem_count"), health.problem_count},
            {key("notes"), to_json(health.notes)},
            {key("note_count"), health.note_count}};
}

qint64 count_in(const QJsonObject& object, const char* name) {
    constexpr double largest = 9e15;
    return static_cast<qint64>(std::clamp(object[key(name)].toDouble(), 0.0, largest));
}

health_report health_from(const QJsonObject& object) {
    health_report health;
    take_findings(object[key("problems")].toArray(),
                  [&](const QString& path, const QString& reason) { health.add_problem(path, reason); });
    take_findings(object[key("notes")].toArray(),
                  [&](const QString& path, const QString& reason) { health.add_note(path, reason); });
    health.problem_count = std::max(health.problem_count, count_in(object, "problem_count"));
    health.note_count = std::max(health.note_count, count_in(object, "note_count"));
    return health;
}

QJsonObject to_json(const sandbox_state& state) {
    return {{key("no_new_privs"), state.no_new_privs},
            {key("landlock"), static_cast<int>(state.landlock)},
            {key("landlock_abi"), state.landlock_abi},
            {key("syscall_filter"), static_cast<int>(state.syscall_filter)},
            {key("note"), state.note}};
}

protection protection_from(const QJsonValue& value) {
    const int number = value.toInt(-1);
    const bool known = number >= static_cast<int>(protection::off) && number <= static_cast<int>(protection::failed);
    return known ? static_cast<protection>(number) : protection::failed;
}

sandbox_state sandbox_from(const QJsonObject& object) {
    sandbox_state state;
    state.no_new_privs = object[key("no_new_privs")].toBool();
    state.landlock = protection_from(object[key("landlock")]);
    state.landlock_abi = object[key("landlock_abi")].toInt();
    state.syscall_filter = protection_from(object[key("syscall_filter")]);
    state.note = object[key("note")].toString();
    return state;
}

QStringList texts_from(const QJsonValue& list) {
    QStringList texts;
    const QJsonArray array = list.toArray();
    for (const QJsonValue& text : array) {
        texts.append(text.toString());
    }
    return texts;
}

QJsonValue ticks_or_null(const std::optional<qint64>& ticks) { // beyond what a JSON number keeps whole
    return ticks ? QJsonValue(QString::number(*ticks)) : QJsonValue();
}

std::optional<qint64> ticks_from(const QJsonValue& value) {
    bool is_number = false;
    const qint64 ticks = value.toString().toLongLong(&is_number);
    return is_number ? std::optional(ticks) : std::nullopt;
}

// Bytes as characters of Latin-1: names of evidence need not be UTF-8.
QJsonObject to_json(const staged_file& file) {
    const intake::ntfs_times& times = file.entry.times;
    return {{key("record"), to_json(file.record)},
            {key("source"), QString::fromLatin1(file.entry.source)},
            {key("path"), QString::fromLatin1(file.entry.path)},
            {key("is_folder"), file.entry.kind == intake::entry_kind::folder},
            {key("created"), ticks_or_null(times.created)},
            {key("modified"), ticks_or_null(times.modified)},
            {key("accessed"), ticks_or_null(times.accessed)}};
}

staged_file staged_from(const QJsonObject& object) {
    staged_file file;
    file.record = evidence_from(object[key("record")].toObject());
    file.entry.source = object[key("source")].toString().toLatin1();
    file.entry.path = object[key("path")].toString().toLatin1();
    file.entry.kind = object[key("is_folder")].toBool() ? intake::entry_kind::folder : intake::entry_kind::file;
    file.entry.sha256 = QByteArray::fromHex(file.record.sha256);
    file.entry.sha256_with_logs = QByteArray::fromHex(file.record.sha256_with_logs);
    file.entry.times.created = ticks_from(object[key("created")]);
    file.entry.times.modified = ticks_from(object[key("modified")]);
    file.entry.times.accessed = ticks_from(object[key("accessed")]);
    return file;
}

// As above.
QJsonArray to_json(const QVector<QByteArray>& paths) {
    QJsonArray list;
    for (const QByteArray& path : paths) {
        list.append(QString::fromLatin1(path));
    }
    return list;
}

QVector<QByteArray> paths_from_json(const QJsonValue& list) {
    QVector<QByteArray> paths;
    for (const QString& path : texts_from(list)) {
        paths.append(path.toLatin1());
    }
    return paths;
}

QJsonObject to_json(const staging_request& staging) {
    return {{key("wanted"), staging.wanted},
            {key("type"), staging.type},
            {key("volume"), staging.volume},
            {key("archive_limit"), staging.archive_limit},
            {key("hive_logs"), staging.hive_logs}};
}

staging_request staging_from(const QJsonObject& object) {
    return {object[key("wanted")].toBool(), object[key("type")].toString(), object[key("volume")].toInt(),
            count_in(object, "archive_limit"), object[key("hive_logs")].toBool(true)};
}

} // namespace

QByteArray to_bytes(const worker_request& request) {
    QJsonArray accounts;
    for (const system_account& account : request.accounts) {
        accounts.append(QJsonArray{account.system_user, account.domain_user});
    }
    const QJsonObject object{
        {key("source_root"), request.source_root},
        {key("accounts"), accounts},
        {key("check"), request.check},
        {key("checked_tables"), QJsonArray::fromStringList(request.checked_tables)},
        {key("tables"), QJsonArray::fromStringList(request.tables)},
        {key("survey"), request.survey},
        {key("link"), request.link},
        {key("folder"), request.folder},
        {key("library"), request.library},
        {key("os_scheme"), request.os_scheme},
        {key("source_number"), request.source_number},
        {key("log_terminal"), request.log_terminal},
        {key("encipher_log"), request.encipher_log},
        {key("sandbox"), request.sandbox},
        {key("staging"), to_json(request.staging)},
    };
    return QJsonDocument(object).toJson(QJsonDocument::Compact) + '\n';
}

QByteArray question_of(const QVector<QByteArray>& paths) {
    QByteArray bytes;
    for (const QByteArray& path : paths) {
        bytes += path + '\0';
    }
    return QByteArray::number(bytes.size()) + '\n' + bytes;
}

QVector<QByteArray> paths_from(const QByteArray& bytes) {
    QVector<QByteArray> paths;
    for (int begin = 0, end = 0; (end = bytes.indexOf('\0', begin)) >= 0; begin = end + 1) {
        paths.append(bytes.mid(begin, end - begin));
    }
    return paths;
}

worker_request request_from(const QByteArray& bytes) {
    const QJsonObject object = QJsonDocument::fromJson(bytes).object();
    worker_request request;
    request.source_root = object[key("source_root")].toString();
    const QJsonArray accounts = object[key("accounts")].toArray();
    for (const QJsonValue& account : accounts) {
        request.accounts.append({account.toArray().at(0).toString(), account.toArray().at(1).toString()});
    }
    request.check = object[key("check")].toBool();
    request.checked_tables = texts_from(object[key("checked_tables")]);
    request.tables = texts_from(object[key("tables")]);
    request.survey = object[key("survey")].toBool();
    request.link = object[key("link")].toBool();
    request.folder = object[key("folder")].toString();
    request.library = object[key("library")].toString();
    request.os_scheme = object[key("os_scheme")].toString();
    request.source_number = object[key("source_number")].toInt();
    request.log_terminal = object[key("log_terminal")].toBool();
    request.encipher_log = object[key("encipher_log")].toBool();
    request.sandbox = object[key("sandbox")].toBool(true);
    request.staging = staging_from(object[key("staging")].toObject());
    return request;
}

QString worker_database(const QString& folder) {
    return result_layout::database_file(result_layout::plugin_folder(folder, artifact_name), artifact_name);
}

QString worker_log(const QString& folder) {
    return folder + QStringLiteral("/cortana_debug.log");
}

QString worker_links(const QString& folder) {
    return folder + QStringLiteral("/links.sqlite");
}

QByteArray to_line(const worker_message& message) {
    QJsonObject object{{key("event"), key(kind_names[message.what])}};
    switch (message.what) {
    case worker_message::confined:
        object.insert(key("sandbox"), to_json(message.sandbox));
        break;
    case worker_message::evidence:
        object.insert(key("record"), to_json(message.record));
        break;
    case worker_message::looked_over:
    case worker_message::checked:
        object.insert(key("health"), to_json(message.health));
        break;
    case worker_message::staged:
        object.insert(key("file"), to_json(message.file));
        break;
    case worker_message::planned:
        object.insert(key("paths"), to_json(message.paths));
        break;
    case worker_message::refused:
        object.insert(key("text"), message.text);
        object.insert(key("number"), message.number);
        break;
    case worker_message::rows:
    case worker_message::step_done:
        object.insert(key("number"), message.number);
        break;
    case worker_message::failed:
        object.insert(key("text"), message.text);
        break;
    case worker_message::unknown:
    case worker_message::waiting:
    case worker_message::linked:
    case worker_message::as_given:
    case worker_message::ended:
        break;
    }
    return QJsonDocument(object).toJson(QJsonDocument::Compact) + '\n';
}

worker_message message_from(const QByteArray& line) {
    const QJsonObject object = QJsonDocument::fromJson(line).object();
    const QString event = object[key("event")].toString();
    const auto* const name = std::find_if(std::begin(kind_names), std::end(kind_names),
                                          [&](const char* known) { return event == QLatin1String(known); });
    worker_message message;
    if (name != std::end(kind_names)) {
        message.what = static_cast<worker_message::kind>(name - std::begin(kind_names));
    }
    message.number = count_in(object, "number");
    message.text = object[key("text")].toString();
    message.sandbox = sandbox_from(object[key("sandbox")].toObject());
    message.record = evidence_from(object[key("record")].toObject());
    message.health = health_from(object[key("health")].toObject());
    message.paths = paths_from_json(object[key("paths")]);
    message.file = staged_from(object[key("file")].toObject());
    return message;
}
