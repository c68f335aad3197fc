// SPDX-License-Identifier: MIT
// Of the source nothing is opened here but folders.
#include "host/run/staging_run.h"

#include "host/exit_codes.h"
#include "host/intake/as_it_stands.h"
#include "host/intake/folder_view.h"
#include "host/run/cancellation.h"
#include "host/run/worker_process.h"
#include "source/native_names.h"

#include <QDir>
#include <QEventLoop>
#include <QFile>
#include <QFileInfo>
#include <QTimer>

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

void take_message(const worker_message& message, staging_outcome& outcome) {
    switch (message.what) {
    case worker_message::confined:
        outcome.sandbox = message.sandbox;
        break;
    case worker_message::staged:
        outcome.files.append(message.file);
        break;
    case worker_message::checked:
        outcome.findings = message.health;
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

void run_worker_for(const worker_request& request, const extract_options& options, staging_outcome& outcome) {
    constexpr int look_round_ms = 50;
    worker_process worker(request, options.limits);
    QEventLoop loop;
    QTimer clock;
    bool cancel_passed_on = false;
    QObject::connect(&worker, &worker_process::message_came, &loop,
                     [&](const worker_message& message) { take_message(message, outcome); });
    QObject::connect(&worker, &worker_process::worker_gone, &loop, [&](const worker_loss& loss) {
        if (!loss.reason.isEmpty() && outcome.refused == 0) {
            outcome.refused = exit_failures;
            outcome.reason = QStringLiteral("its parts could not be staged: ") + loss.reason;
        }
        loop.quit();
    });
    QObject::connect(&clock, &QTimer::timeout, &loop, [&] {
        if (is_cancelled() && !cancel_passed_on) {
            worker.cancel(cancel_signal());
            cancel_passed_on = true;
        }
        worker.hold_to_limits();
    });
    clock.start(look_round_ms);
    QTimer::singleShot(0, &loop, [&] { worker.begin(); });
    loop.exec();
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
    run_worker_for(request, options, outcome);
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
