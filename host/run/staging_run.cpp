// SPDX-License-Identifier: MIT
// Of the source nothing is opened here but folders.
#include "host/run/staging_run.h"

#include "host/exit_codes.h"
#include "host/intake/as_it_stands.h"
#include "host/intake/folder_view.h"
#include "host/intake/staged_hives.h"
#include "host/intake/staging_folder.h"
#include "host/run/cancellation.h"
#include "host/run/staged_survey.h"
#include "source/native_names.h"
#include "source/places.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <filesystem>

namespace {

QVector<QByteArray> profiles_of(intake::source_view& view, const extract_options& options) {
    health_report told_later; // by those who read the folder
    QVector<QByteArray> profiles;
    for (const system_account& account : options.users) {
        for (const QString& name : {account.system_user, account.domain_user}) {
            if (!name.isEmpty()) {
                profiles.append(QFile::encodeName(name));
            }
        }
    }
    return profiles.isEmpty() ? intake::list_profiles(view, {}, told_later) : profiles;
}

worker_request request_for(const QByteArray& source, const QString& folder, const extract_options& options) {
    worker_request request;
    request.source_root = QFile::decodeName(source);
    request.accounts = options.users;
    request.folder = folder.chopped(1);
    request.sandbox = options.sandbox;
    request.staging = {true, options.source_type, options.volume, options.archive_limit, options.hive_logs};
    return request;
}

// Name of the profile folder that a staged path lies in or is; empty for none.
QByteArray profile_of(const QByteArray& path) {
    const QByteArray users = places::users_folder;
    return path.startsWith(users) ? path.mid(users.size()).split('/').first() : QByteArray();
}

} // namespace

bool is_plain_folder(const QByteArray& source, const extract_options& options) {
    const bool is_folder = QFileInfo(QFile::decodeName(source)).isDir();
    const auto opened = is_folder ? intake::open_folder_view(source) : intake::opened_folder{};
    if (!opened.view || (!options.source_type.isEmpty() && options.source_type != QLatin1String("folder"))) {
        return is_folder && options.source_type.isEmpty();
    }
    const intake::found_roots found = intake::find_source_roots(*opened.view);
    if (found.roots.size() != 1) {
        return found.roots.isEmpty();
    }
    const intake::standing how = intake::standing_of(*opened.view, found.roots[0], profiles_of(*opened.view, options));
    return how == intake::standing::as_wanted || (how == intake::standing::has_logs && !options.hive_logs);
}

staged_source::staged_source(const QByteArray& source, const QString& folder, const extract_options& asked)
    : request(request_for(source, folder, asked)), options(asked),
      copying(request, asked, [this](const worker_message& message) { take(message); }) {}

staged_source::~staged_source() = default;

void staged_source::stage() {
    const QString folder = request.folder + QLatin1Char('/');
    remove_staged(folder);
    if (!QDir().mkpath(folder + QStringLiteral("Users"))) {
        result.refused = exit_output;
        result.reason = QStringLiteral("the folder %1 cannot be made").arg(folder);
        return;
    }
    const bool has_copied_all = copying.run();
    list_profiles();
    if (has_copied_all && !is_cancelled()) {
        survey_hives();
    }
    if (!has_copied_all && !copying.loss().reason.isEmpty() && result.refused == 0) {
        take_loss(copying.loss());
    }
    result.files = staged.files();
    named_begin = result.files.size();
    const QString trouble = give_times();
    if (!trouble.isEmpty() && result.refused == 0) {
        result.refused = exit_output;
        result.reason = trouble;
    }
}

bool staged_source::make_named(const QVector<QByteArray>& paths, const std::function<void()>& settled) {
    if (paths.isEmpty() || !told_of_loss.isEmpty()) {
        return false;
    }
    if (!copying.is_waiting()) {
        lose_names();
        return false;
    }
    copying.ask(paths, [this, settled] {
        if (!copying.is_waiting()) {
            lose_names();
        }
        settled();
    });
    return true;
}

// What was made and not told of must not stay: nobody has said that it exists.
void staged_source::lose_names() {
    told_of_loss = copying.loss().reason;
    staged.remove_others(QFile::encodeName(request.folder));
    result.findings.add_problem(
        QString(), QStringLiteral("which files exist that web cache entries name was not found out: ") + told_of_loss);
}

QString staged_source::end_questions() {
    if (copying.is_waiting()) {
        copying.end();
    }
    result.files = staged.files();
    return holds_named() ? give_times() : QString();
}

QString staged_source::give_times() {
    QVector<intake::staged_entry> entries;
    for (const staged_file& file : staged.files()) {
        entries.append(file.entry);
    }
    const QString trouble = intake::set_staged_times(QFile::encodeName(request.folder), entries);
    return trouble.isEmpty() ? trouble : QStringLiteral("the times of a copy cannot be set: ") + trouble;
}

void staged_source::take(const worker_message& message) {
    switch (message.what) {
    case worker_message::confined:
        result.sandbox = message.sandbox;
        break;
    case worker_message::planned:
        staged.plan(message.paths);
        break;
    case worker_message::staged:
        staged.add(message.file);
        copying.step_began();
        break;
    case worker_message::checked:
        result.findings.add(message.health);
        copying.step_began();
        break;
    case worker_message::as_given:
        result.as_given = true;
        break;
    case worker_message::refused:
    case worker_message::failed:
        result.refused = message.what == worker_message::failed ? int{exit_internal} : static_cast<int>(message.number);
        result.refused = result.refused == 0 ? int{exit_internal} : result.refused;
        result.reason = message.text;
        break;
    default:
        break;
    }
}

void staged_source::take_loss(const worker_loss& loss) {
    if (!staged.holds_files() || is_cancelled()) {
        result.refused = loss.began ? exit_failures : exit_internal;
        result.reason = QStringLiteral("its parts could not be staged: ") + loss.reason;
        return;
    }
    told_of_loss = loss.reason;
    staged.remove_others(QFile::encodeName(request.folder));
    for (const QByteArray& source : staged.missing()) {
        result.findings.add_problem(shown_path(source), QStringLiteral("not copied: the process that copies was lost"));
    }
    result.findings.add_problem(QString(),
                                QStringLiteral("not all of it was copied, rows come from what was: ") + loss.reason);
}

void staged_source::list_profiles() {
    for (const staged_file& file : staged.files()) {
        const QByteArray name = profile_of(file.entry.path);
        if (!name.isEmpty() && file.entry.path == places::users_folder + name) {
            result.profiles.append(name);
        }
    }
}

void staged_source::survey_hives() {
    QVector<QByteArray> profiles;
    QVector<QByteArray> as_found;
    for (const staged_file& file : staged.files()) {
        const QByteArray profile = profile_of(file.entry.path);
        if (!file.entry.sha256_with_logs.isEmpty()) {
            as_found.append(intake::as_found(file.entry.path));
        }
        if (!file.entry.sha256_with_logs.isEmpty() && is_utf8(profile)) { // others give no rows
            profiles.append(profile);
        }
    }
    for (const survey_outcome& one : survey_profiles(profiles, request, options)) {
        add_findings(one.findings);
        if (!one.loss.isEmpty() && !is_cancelled()) {
            result.findings.add_problem(shown_path(places::users_folder + one.profile),
                                        QStringLiteral("which searches are in its logs only was not found out: ") +
                                            one.loss);
        }
    }
    const intake::staging_folder folder(QFile::encodeName(request.folder));
    for (const QByteArray& path : qAsConst(as_found)) {
        folder.remove_file(path);
    }
}

void staged_source::add_findings(const health_report& findings) {
    health_report renamed = findings;
    for (QVector<finding>* const list : {&renamed.problems, &renamed.notes}) {
        for (finding& one : *list) {
            const staged_file* const copy = staged.at(QFile::encodeName(one.path));
            one.path = copy != nullptr ? copy->record.path : one.path;
        }
    }
    result.findings.add(renamed);
}

void remove_staged(const QString& folder) {
    std::error_code ignored; // what is left is met by the next run
    std::filesystem::remove_all(QFile::encodeName(folder).chopped(1).constData(), ignored);
}
