// SPDX-License-Identifier: MIT
// A source's database is read for its digest before its rows are taken: what was cut off on the way is never merged.
#include "host/batch/batch_merge.h"

#include "host/batch/batch_survey.h"
#include "host/batch/merged_database.h"
#include "host/batch/publish.h"
#include "host/batch/source_lock.h"
#include "host/exit_codes.h"
#include "host/record/file_digest.h"
#include "host/record/links_file.h"
#include "source/native_names.h"
#include "source/real_location.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QJsonArray>
#include <QJsonDocument>
#include <QSysInfo>
#include <QTemporaryDir>

#include <cerrno>
#include <future>
#include <unistd.h>

namespace batch {
namespace {

constexpr int merge_format = 1;

QString outcome_of(const surveyed_source& one) {
    if (one.state != source_state::done) {
        return one.state == source_state::failed ? QStringLiteral("failed") : QStringLiteral("missing");
    }
    return one.record.exit_code == exit_complete        ? QStringLiteral("complete")
           : one.record.exit_code == exit_nothing_found ? QStringLiteral("nothing found")
                                                        : QStringLiteral("finished with failures");
}

// Why the file is not what the run's record says; empty: it is. digest: empty when there was no such file.
QString difference_of(const QString& file, const QString& digest) {
    if (digest.isEmpty()) {
        return QFile::exists(file) ? QStringLiteral("%1 is not in its record").arg(file) : QString();
    }
    const QByteArray found = digest_of_file(file);
    if (found.isEmpty()) {
        return QStringLiteral("%1 cannot be read: %2").arg(file, error_words(errno));
    }
    return found == digest.toLatin1() ? QString() : QStringLiteral("%1 is not what its run wrote").arg(file);
}

class merge {
public:
    merge(const merge_options& asked, bool (*asked_to_stop)()) : options(asked), cancelled(asked_to_stop) {}

    merge_answer run() {
        batch_survey survey = survey_of(options.out);
        if (!survey.error.isEmpty()) {
            return refuse(exit_output, survey.error);
        }
        sources = survey.sources;
        if (!may_replace() || !name_unfinished()) {
            return answer;
        }
        QTemporaryDir local(QDir::tempPath() + QStringLiteral("/cortana-merge-XXXXXX"));
        const QString result = local.filePath(QStringLiteral("result"));
        const QString database = database_of(result);
        if (!local.isValid() || !QDir().mkpath(QFileInfo(database).path())) {
            return refuse(exit_output, QStringLiteral("the temporary folder %1 cannot be used").arg(QDir::tempPath()));
        }
        if (!merge_rows(database)) {
            return answer;
        }
        publish(result);
        return answer;
    }

private:
    merge_answer refuse(int code, const QString& error) {
        answer.exit_code = code;
        answer.error = error;
        return answer;
    }

    QString parent() const { return QFileInfo(QDir::cleanPath(options.merged)).absolutePath(); }
    QString name() const { return QFileInfo(QDir::cleanPath(options.merged)).fileName(); }

    // Nothing but a merged result is replaced, and no evidence is written to.
    bool may_replace() {
        const QString there = parent() + QLatin1Char('/') + name();
        const QByteArray real = real_location(QFile::encodeName(parent()));
        if (real.isEmpty()) {
            refuse(exit_output, QStringLiteral("%1: %2").arg(parent(), error_words(errno)));
            return false;
        }
        for (const surveyed_source& one : qAsConst(sources)) {
            if (is_at_or_below(real, QFile::encodeName(QDir::cleanPath(one.source.path)))) {
                refuse(exit_usage, QStringLiteral("%1 lies inside the source %2").arg(there, one.source.path));
                return false;
            }
        }
        take_back(parent(), name());
        const bool is_free = !QFileInfo::exists(there) || QDir(there).isEmpty();
        if (!is_free && !QFileInfo::exists(there + QStringLiteral("/merge.json"))) {
            refuse(exit_usage, QStringLiteral("%1 is there already and is no merged result").arg(there));
            return false;
        }
        return true;
    }

    bool name_unfinished() {
        for (const surveyed_source& one : qAsConst(sources)) {
            if (one.state == source_state::failed) {
                answer.failed.append({one.source.id, one.reason});
            } else if (one.state != source_state::done) {
                answer.missing.append({one.source.id, one.reason});
            }
        }
        return go_on();
    }

    bool go_on() {
        const bool all_there = answer.missing.isEmpty() && answer.failed.isEmpty();
        if (!all_there && !options.allow_partial) {
            refuse(exit_failures,
                   QStringLiteral("%1 sources are missing and %2 failed; --allow-partial goes on without them")
                       .arg(answer.missing.size())
                       .arg(answer.failed.size()));
            return false;
        }
        return true;
    }

    // The next source is read for its digest while the rows of the one before are taken.
    bool merge_rows(const QString& database) {
        merged_database merged;
        bool done = merged.create(database);
        std::future<QString> next = trouble_of(0);
        for (int i = 0; i < sources.size(); ++i) {
            surveyed_source& one = sources[i];
            const QString trouble = next.get();
            next = trouble_of(i + 1);
            if (cancelled()) {
                refuse(exit_failures, QStringLiteral("cancelled"));
                return false;
            }
            if (!trouble.isEmpty() && !take_as_failed(one, trouble)) {
                return false;
            }
            source_row row = row_of(one);
            done = done && (one.state != source_state::done || add_rows(merged, one, row)) && merged.add_source(row);
            if (!done) {
                refuse(exit_output, QStringLiteral("%1: %2").arg(one.source.id, merged.error()));
                return false;
            }
        }
        return merged.finish();
    }

    static source_row row_of(const surveyed_source& one) {
        source_row row;
        row.number = one.source.number;
        row.id = one.source.id;
        row.path = one.source.path;
        row.type = one.source.type;
        row.sha256 = one.source.sha256;
        row.outcome = outcome_of(one);
        row.reason = one.state == source_state::done || one.state == source_state::failed ? one.reason : QString();
        if (one.state == source_state::done) {
            row.version = one.record.version;
            row.result_sha256 = one.record.database_sha256;
        }
        return row;
    }

    // Why the result of a done source is not what its run wrote; empty: it is, or the source is not done.
    std::future<QString> trouble_of(int index) const {
        const bool is_done = index < sources.size() && sources[index].state == source_state::done;
        const QString database =
            is_done ? database_of(out_folder(options.out).result(sources[index].source.id)) : QString();
        const batch_record record = is_done ? sources[index].record : batch_record();
        return std::async(std::launch::async, [is_done, database, record] {
            const QString trouble = is_done ? difference_of(database, record.database_sha256) : QString();
            return is_done && trouble.isEmpty() ? difference_of(links_file(database), record.links_sha256) : trouble;
        });
    }

    bool take_as_failed(surveyed_source& one, const QString& trouble) {
        one.state = source_state::failed;
        one.reason = trouble;
        answer.failed.append({one.source.id, trouble});
        return go_on();
    }

    bool add_rows(merged_database& merged, const surveyed_source& one, source_row& row) {
        const QString database = database_of(out_folder(options.out).result(one.source.id));
        const QString links = one.record.links_sha256.isEmpty() ? QString() : links_file(database);
        ++answer.sources;
        if (one.record.exit_code == exit_failures) {
            answer.with_failures.append({one.source.id, one.reason});
        }
        if (one.record.database_sha256.isEmpty()) {
            return true; // nothing was found, not even a profile
        }
        const bool done = merged.add_rows(database, links, QStringLiteral("Source%1").arg(one.source.number), row.rows);
        answer.rows += row.rows;
        return done;
    }

    QByteArray record() const {
        const QJsonObject object{{QStringLiteral("format"), merge_format},
                                 {QStringLiteral("version"), QStringLiteral(CORTANA_VERSION)},
                                 {QStringLiteral("sources"), answer.sources},
                                 {QStringLiteral("missing"), ids_of(answer.missing)},
                                 {QStringLiteral("failed"), ids_of(answer.failed)},
                                 {QStringLiteral("with_failures"), ids_of(answer.with_failures)},
                                 {QStringLiteral("rows"), answer.rows}};
        return QJsonDocument(object).toJson(QJsonDocument::Indented);
    }

    static QJsonArray ids_of(const QVector<named_source>& list) {
        QJsonArray ids;
        for (const named_source& one : list) {
            ids.append(one.id);
        }
        return ids;
    }

    void publish(const QString& result) {
        QString reason;
        source_lock lock;
        const QString file = QStringLiteral("%1/.%2.partial.lock").arg(parent(), name());
        const QString holder = QStringLiteral("host %1, process %2").arg(QSysInfo::machineHostName()).arg(::getpid());
        if (!lock.take(file, holder, reason) ||
            !write_whole(result + QStringLiteral("/merge.json"), record(), reason) ||
            !publish_folder(result, parent(), name(), reason)) {
            refuse(exit_output, reason);
        } else {
            const bool all = answer.missing.isEmpty() && answer.failed.isEmpty() && answer.with_failures.isEmpty();
            answer.exit_code = all ? exit_complete : exit_failures;
        }
        lock.remove();
    }

    const merge_options& options;
    bool (*cancelled)();
    QVector<surveyed_source> sources;
    merge_answer answer;
};

} // namespace

merge_answer merge_batch(const merge_options& options, bool (*cancelled)()) {
    return merge(options, cancelled).run();
}

} // namespace batch
