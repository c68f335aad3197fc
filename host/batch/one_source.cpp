// SPDX-License-Identifier: MIT
// What is not sure is not called done: only exit codes 0, 3 (with a result) and 4 give a result its name.
#include "host/batch/one_source.h"

#include "host/batch/batch_record.h"
#include "host/batch/manifest_file.h"
#include "host/batch/out_folder.h"
#include "host/batch/publish.h"
#include "host/batch/source_lock.h"
#include "host/exit_codes.h"
#include "host/run/output_location.h"
#include "source/native_names.h"
#include "source/real_location.h"

#include <QCryptographicHash>
#include <QDateTime>
#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QFileInfo>
#include <QJsonDocument>
#include <QSysInfo>

#include <cerrno>
#include <optional>
#include <sys/stat.h>
#include <unistd.h>

namespace batch {
namespace {

// A folder below TMPDIR that is gone at the end. Its name is the source's and the batch's: what a killed run left there
// is removed by the next one that does the same source on this machine.
class local_folder {
public:
    bool make(const QString& out, const QString& id, const QByteArray& source, QString& error) {
        const QByteArray below = real_location(QFile::encodeName(QDir::tempPath()));
        const QByteArray hash =
            QCryptographicHash::hash(out.toUtf8() + '/' + QByteArray::number(::getuid()), QCryptographicHash::Sha256);
        const QString wanted = QStringLiteral("%1/cortana-batch-%2-%3")
                                   .arg(QFile::decodeName(below), QString::fromLatin1(hash.toHex().left(16)), id);
        if (below.isEmpty() || is_at_or_below(below, source)) {
            error =
                QStringLiteral("the temporary folder %1 is missing, or lies inside the source").arg(QDir::tempPath());
            return false;
        }
        remove_folder(wanted);
        if (::mkdir(QFile::encodeName(wanted).constData(), 0700) != 0) {
            error = QStringLiteral("the temporary folder %1 cannot be made: %2").arg(wanted, error_words(errno));
            return false;
        }
        path = wanted;
        return true;
    }
    ~local_folder() {
        if (!path.isEmpty()) {
            remove_folder(path);
        }
    }
    local_folder() = default;
    local_folder(const local_folder&) = delete;
    local_folder& operator=(const local_folder&) = delete;

    QString result() const { return path + QStringLiteral("/result"); }

private:
    QString path;
};

QByteArray text_of(const QJsonObject& object) {
    return QJsonDocument(object).toJson(QJsonDocument::Indented);
}

source_outcome outcome(int code, const QString& id, const QString& what) {
    return {code, QStringLiteral("%1: %2").arg(id, what)};
}

class source_work {
public:
    source_work(const source_run& asked, const extract_function& extraction)
        : run(asked), extract(extraction), out(asked.out), id(asked.source.id) {
        elapsed.start();
        record.id = id;
        record.version = QLatin1String(CORTANA_VERSION);
        record.arguments = arguments_of(run.source, run.options);
        record.started = QDateTime::currentDateTimeUtc().toString(Qt::ISODate);
        record.host = QSysInfo::machineHostName();
    }

    source_outcome work() {
        QString reason;
        const QByteArray source = real_location(QFile::encodeName(run.source.path));
        if (source.isEmpty() || !look_at_evidence(run.source, record.evidence, reason)) {
            reason = reason.isEmpty() ? error_words(errno) : reason;
            return fail(exit_failures, QStringLiteral("could not read: %1: %2").arg(run.source.path, reason));
        }
        const output_location place = settle_output(out.result(id), {}, source);
        if (place.refused != 0) {
            return outcome(place.refused, id, place.reason);
        }
        const QString holder = QStringLiteral("host %1, process %2").arg(record.host).arg(::getpid());
        if (const std::optional<source_outcome> settled = settle_done()) {
            // A run that died between its result's name and its own end leaves its lock.
            if (QFile::exists(out.lock(id)) && lock.take(out.lock(id), holder, reason)) {
                lock.remove();
            }
            return *settled;
        }
        bool is_other = false;
        if (!QDir().mkpath(run.out) || !keep_manifest(run.manifest, out, is_other, reason)) {
            return outcome(is_other ? exit_usage : exit_output, id,
                           reason.isEmpty() ? QStringLiteral("the folder %1 cannot be made").arg(run.out) : reason);
        }
        if (!lock.take(out.lock(id), holder, reason)) {
            return outcome(exit_output, id, reason);
        }
        const source_outcome done = work_locked(source);
        lock.remove();
        return done;
    }

private:
    source_outcome work_locked(const QByteArray& source) {
        QString reason;
        local_folder local;
        take_back(run.out, id);
        if (const std::optional<source_outcome> settled = settle_done()) {
            return *settled; // by another run, before this one had the lock
        }
        if (!local.make(QDir(run.out).absolutePath(), id, source, reason)) {
            return fail(exit_output, reason);
        }
        const extract_answer answer = extract(options_for(run.source, run.options, local.result()));
        record.exit_code = answer.exit_code;
        record.milliseconds = elapsed.elapsed();
        const QJsonObject written = object_in(run_record_of(local.result()));
        take_run_record(written, record);
        const bool is_result = answer.exit_code == exit_complete || answer.exit_code == exit_nothing_found ||
                               (answer.exit_code == exit_failures && !written.isEmpty());
        if (!is_result) {
            return fail(answer.exit_code, answer.reason.isEmpty() ? record.reason : answer.reason);
        }
        if (written.isEmpty()) {
            record.reason = answer.reason;
        }
        return publish(local.result(), written);
    }

    // What there is to say without any work; nothing: the work is to be done.
    std::optional<source_outcome> settle_done() {
        if (!QFileInfo::exists(out.result(id))) {
            return std::nullopt;
        }
        batch_record done;
        if (!record_of(object_in(out.record(id)), done)) {
            return outcome(exit_usage, id, QStringLiteral("%1 is no result of a batch").arg(out.result(id)));
        }
        const QStringList others = differences(done, record);
        if (others.isEmpty()) {
            return outcome(exit_complete, id, QStringLiteral("done already"));
        }
        return run.force
                   ? std::nullopt
                   : std::make_optional(outcome(exit_usage, id,
                                                QStringLiteral("done already with other %1; --force does it again")
                                                    .arg(others.join(QStringLiteral(", ")))));
    }

    source_outcome publish(const QString& result, const QJsonObject& written) {
        QString reason;
        const QString there = QFileInfo(out.result(id)).absoluteFilePath();
        const QString real_result = QFile::decodeName(real_location(QFile::encodeName(result)));
        bool done = QDir().mkpath(result) &&
                    write_whole(result + QStringLiteral("/batch.json"), text_of(to_json(record)), reason);
        if (done && !written.isEmpty()) {
            done = write_whole(run_record_of(result), text_of(moved_run_record(written, real_result, there)), reason);
        }
        if (!done || !publish_folder(result, run.out, id, reason)) {
            return fail(exit_output, QStringLiteral("the result cannot be written: ") + reason);
        }
        QFile::remove(out.failure(id));
        const QString rows = QStringLiteral("%1 rows").arg(record.rows);
        return outcome(record.exit_code, id,
                       record.reason.isEmpty() ? rows : rows + QStringLiteral("; ") + record.reason);
    }

    // Tells those who come later, as far as the folder can be written to.
    source_outcome fail(int code, const QString& reason) {
        QString ignored;
        record.exit_code = code;
        record.reason = reason.isEmpty() ? QStringLiteral("exit code %1").arg(code) : reason;
        record.milliseconds = elapsed.elapsed();
        if (QFileInfo(run.out).isDir()) {
            write_whole(out.failure(id), text_of(to_json(record)), ignored);
        }
        return outcome(code, id, record.reason);
    }

    const source_run& run;
    const extract_function& extract;
    out_folder out;
    QString id;
    batch_record record;
    source_lock lock;
    QElapsedTimer elapsed;
};

} // namespace

source_outcome run_one_source(const source_run& run, const extract_function& extract) {
    return source_work(run, extract).work();
}

} // namespace batch
