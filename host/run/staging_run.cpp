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
#include <QEventLoop>
#include <QFile>
#include <QFileInfo>
#include <QTimer>

#include <filesystem>
#include <memory>
#include <vector>

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

// One worker that surveys what was staged of a profile.
class profile_survey {
public:
    profile_survey(const QByteArray& of, const worker_request& staging, const extract_options& options)
        : name(of), session(request_for(of, staging, options), options,
                            [this](const worker_message& message) { take(message); }) {}

    void start(const std::function<void()>& gone) { session.start(gone); }
    const QByteArray& profile() const { return name; }
    const QVector<QByteArray>& asked() const { return paths; }
    const health_report& findings() const { return report; }
    const QString& loss() const { return session.loss().reason; } // empty: it came to its end

private:
    static worker_request request_for(const QByteArray& profile, const worker_request& staging,
                                      const extract_options& options) {
        worker_request survey;
        survey.source_root = staging.folder + QLatin1Char('/');
        survey.accounts = {{QFile::decodeName(profile), QString()}};
        survey.checked_tables = options.tables;
        survey.survey = true;
        survey.sandbox = staging.sandbox;
        return survey;
    }
    void take(const worker_message& message) {
        constexpr qint64 most_bytes = qint64{64} << 20; // more than a worker tells
        for (const QByteArray& path : message.what == worker_message::asked ? message.paths : QVector<QByteArray>()) {
            bytes += path.size();
            if (bytes < most_bytes) {
                paths.append(path);
            }
        }
        if (message.what == worker_message::checked) {
            report = message.health;
        }
    }

    QByteArray name;
    QVector<QByteArray> paths;
    qint64 bytes = 0;
    health_report report;
    worker_session session;
};

// Returns when all are gone; those that a cancel kept from starting are left out.
void run_together(const std::vector<std::unique_ptr<profile_survey>>& surveys, int at_once) {
    QEventLoop loop;
    size_t next = 0;
    int running = 0;
    std::function<void()> start_more = [&] {
        for (; running < at_once && next < surveys.size() && !is_cancelled(); ++next) {
            ++running;
            surveys[next]->start([&] {
                --running;
                start_more();
            });
        }
        if (running == 0) {
            loop.quit();
        }
    };
    QTimer::singleShot(0, &loop, start_more);
    if (!surveys.empty()) {
        loop.exec();
    }
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
            take_loss(loss, waits);
        }
        outcome.files = staged.files();
    }

private:
    void take(const worker_message& message);
    void take_loss(const worker_loss& loss, bool had_copied_all);
    void list_profiles();
    QVector<QByteArray> survey();
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

void staging::take_loss(const worker_loss& loss, bool had_copied_all) {
    if (!staged.holds_files() || is_cancelled()) {
        outcome.refused = loss.began ? exit_failures : exit_internal;
        outcome.reason = QStringLiteral("its parts could not be staged: ") + loss.reason;
        return;
    }
    staged.remove_others(QFile::encodeName(request.folder));
    for (const QByteArray& source : staged.missing()) {
        outcome.findings.add_problem(shown_path(source),
                                     QStringLiteral("not copied: the process that copies was lost"));
    }
    outcome.findings.add_problem(
        QString(),
        had_copied_all
            ? QStringLiteral("which files exist that web cache entries name was not found out: ") + loss.reason
            : QStringLiteral("not all of it was copied, rows come from what was: ") + loss.reason);
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
    std::vector<std::unique_ptr<profile_survey>> surveys;
    for (const QByteArray& profile : qAsConst(outcome.profiles)) {
        if (is_utf8(profile)) { // others give no rows
            surveys.push_back(std::make_unique<profile_survey>(profile, request, options));
        }
    }
    run_together(surveys, options.jobs);
    QVector<QByteArray> asked;
    for (const auto& one : surveys) {
        asked += one->asked();
        add_findings(one->findings());
        const QString& lost = one->loss();
        if (!lost.isEmpty() && !is_cancelled()) {
            outcome.findings.add_problem(shown_path(places::users_folder + one->profile()),
                                         QStringLiteral("which files its web cache names elsewhere, and which searches "
                                                        "are in the log only, was not found out: ") +
                                             lost);
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
