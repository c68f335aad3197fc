// SPDX-License-Identifier: MIT
// Of the source nothing is opened here but folders.
#include "host/run/staging_run.h"

#include "host/exit_codes.h"
#include "host/intake/as_it_stands.h"
#include "host/intake/folder_view.h"
#include "host/intake/staged_hives.h"
#include "host/intake/staging_folder.h"
#include "host/run/cancellation.h"
#include "host/run/staged_list.h"
#include "host/run/worker_session.h"
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

// Stages a source: a worker that copies, one a profile that surveys the copies, and the first one again for the names
// that those found.
class staging {
public:
    staging(const worker_request& asked, const extract_options& given, staging_outcome& result)
        : request(asked), options(given), outcome(result),
          copying(asked, given, [this](const worker_message& message) { take(message); }) {}

    void run() {
        const bool waits = copying.run();
        list_profiles();
        if (waits) {
            const QVector<QByteArray> asked = is_cancelled() ? QVector<QByteArray>() : survey();
            copying.answer(paths_to_bytes(asked));
            copying.run();
        }
        const worker_loss& loss = copying.loss();
        if (!loss.reason.isEmpty() && outcome.refused == 0) {
            take_loss(loss.reason, waits);
        }
        outcome.files = staged.files();
    }

private:
    void take(const worker_message& message);
    void take_loss(const QString& reason, bool had_copied_all);
    void list_profiles();
    QVector<QByteArray> survey();
    void survey_profile(const QByteArray& profile, QVector<QByteArray>& asked);
    // In place of a copy's path that of its source.
    void add_findings(const health_report& findings);

    const worker_request& request;
    const extract_options& options;
    staging_outcome& outcome;
    staged_list staged;
    worker_session copying;
};

void staging::take(const worker_message& message) {
    switch (message.what) {
    case worker_message::confined:
        outcome.sandbox = message.sandbox;
        break;
    case worker_message::planned:
        staged.plan(message.paths);
        break;
    case worker_message::staged:
        staged.add(message.file);
        copying.step_began();
        break;
    case worker_message::checked:
        outcome.findings.add(message.health);
        copying.step_began();
        break;
    case worker_message::as_given:
        outcome.as_given = true;
        break;
    case worker_message::refused:
    case worker_message::failed:
        outcome.refused =
            message.what == worker_message::failed ? int{exit_internal} : static_cast<int>(message.number);
        outcome.refused = outcome.refused == 0 ? int{exit_internal} : outcome.refused;
        outcome.reason = message.text;
        break;
    default:
        break;
    }
}

void staging::take_loss(const QString& reason, bool had_copied_all) {
    if (!staged.holds_files() || is_cancelled()) {
        outcome.refused = exit_failures;
        outcome.reason = QStringLiteral("its parts could not be staged: ") + reason;
        return;
    }
    staged.remove_others(QFile::encodeName(request.folder));
    for (const QByteArray& source : staged.missing()) {
        outcome.findings.add_problem(shown_path(source),
                                     QStringLiteral("not copied: the process that copies was lost"));
    }
    outcome.findings.add_problem(
        QString(), had_copied_all
                       ? QStringLiteral("which files exist that web cache entries name was not found out: ") + reason
                       : QStringLiteral("not all of it was copied, rows come from what was: ") + reason);
}

void staging::list_profiles() {
    const QByteArray users = places::users_folder;
    for (const staged_file& file : staged.files()) {
        const QByteArray name = file.entry.path.mid(users.size());
        if (file.entry.path.startsWith(users) && !name.isEmpty() && !name.contains('/')) {
            outcome.profiles.append(name);
        }
    }
}

QVector<QByteArray> staging::survey() {
    QVector<QByteArray> asked;
    for (const QByteArray& profile : qAsConst(outcome.profiles)) {
        if (!is_cancelled() && is_utf8(profile)) { // others give no rows
            survey_profile(profile, asked);
        }
    }
    const intake::staging_folder folder(QFile::encodeName(request.folder));
    for (const staged_file& file : staged.files()) {
        if (!file.entry.sha256_with_logs.isEmpty()) {
            folder.remove_file(intake::as_found(file.entry.path));
        }
    }
    return asked;
}

void staging::survey_profile(const QByteArray& profile, QVector<QByteArray>& asked) {
    worker_request survey;
    survey.source_root = request.folder + QLatin1Char('/');
    survey.accounts = {{QFile::decodeName(profile), QString()}};
    survey.checked_tables = options.tables;
    survey.survey = true;
    survey.sandbox = request.sandbox;
    qint64 bytes = 0;
    worker_session session(survey, options, [&](const worker_message& message) {
        for (const QByteArray& path : message.what == worker_message::asked ? message.paths : QVector<QByteArray>()) {
            constexpr qint64 most_bytes = qint64{64} << 20; // more than a worker tells
            bytes += path.size();
            if (bytes < most_bytes) {
                asked.append(path);
            }
        }
        if (message.what == worker_message::checked) {
            add_findings(message.health);
        }
    });
    session.run();
    if (!session.loss().reason.isEmpty() && !is_cancelled()) {
        outcome.findings.add_problem(shown_path(places::users_folder + profile),
                                     QStringLiteral("which files its web cache names elsewhere, and which searches are "
                                                    "in the log only, was not found out: ") +
                                         session.loss().reason);
    }
}

void staging::add_findings(const health_report& findings) {
    health_report renamed = findings;
    for (QVector<finding>* const list : {&renamed.problems, &renamed.notes}) {
        for (finding& one : *list) {
            const staged_file* const copy = staged.at(QFile::encodeName(one.path));
            one.path = copy != nullptr ? copy->record.path : one.path;
        }
    }
    outcome.findings.add(renamed);
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

staging_outcome stage_source(const QByteArray& source, const QString& folder, const extract_options& options) {
    staging_outcome outcome;
    remove_staged(folder);
    if (!QDir().mkpath(folder + QStringLiteral("Users"))) {
        outcome.refused = exit_output;
        outcome.reason = QStringLiteral("the folder %1 cannot be made").arg(folder);
        return outcome;
    }
    worker_request request;
    request.source_root = QFile::decodeName(source);
    request.accounts = options.users;
    request.folder = folder.chopped(1);
    request.sandbox = options.sandbox;
    request.staging = {true, options.source_type, options.volume, options.archive_limit, options.hive_logs};
    staging(request, options, outcome).run();
    QVector<intake::staged_entry> entries;
    for (const staged_file& file : qAsConst(outcome.files)) {
        entries.append(file.entry);
    }
    const QString trouble = intake::set_staged_times(QFile::encodeName(folder), entries);
    if (!trouble.isEmpty() && outcome.refused == 0) {
        outcome.refused = exit_output;
        outcome.reason = QStringLiteral("the times of a copy cannot be set: ") + trouble;
    }
    return outcome;
}

void remove_staged(const QString& folder) {
    std::error_code ignored; // what is left is met by the next run
    std::filesystem::remove_all(QFile::encodeName(folder).chopped(1).constData(), ignored);
}
