// SPDX-License-Identifier: MIT
// Records of copies are known by the paths that they were staged under.
#include "host/run/staged_names.h"

#include "common/filetime.h"
#include "source/native_names.h"

#include <QFile>

namespace {

class source_names {
public:
    source_names(const QVector<staged_file>& files, const QString& source_path, const QString& staged_folder)
        : source(source_path), staged(staged_folder) {
        for (int i = 0; i < files.size(); ++i) {
            places.insert(shown_path(files[i].entry.path), i);
        }
    }
    // Index of the copy; -1 for any other path.
    int place_of(const QString& path) const {
        return path.startsWith(staged) ? places.value(path.mid(staged.size()), -1) : -1;
    }
    QString in_source(const QString& path_in_view) const {
        return path_in_view.isEmpty() ? source : source + QLatin1Char('/') + path_in_view;
    }

private:
    QString source;
    QString staged;
    QHash<QString, int> places;
};

void rename(QString& path, const source_names& names, const QVector<staged_file>& files, const QString& staged) {
    const int place = names.place_of(path);
    if (place >= 0) {
        path = names.in_source(files[place].record.path);
    } else if (path.startsWith(staged)) {
        path = names.in_source(path.mid(staged.size()));
    }
}

// What was read for the rows must be what was copied.
void tell_if_changed(const evidence_record& copied, const QByteArray& read, health_report& health) {
    const QByteArray& copy = copied.sha256_with_logs.isEmpty() ? copied.sha256 : copied.sha256_with_logs;
    if (!read.isEmpty() && read != copy) {
        health.add_problem(copied.path,
                           QStringLiteral("its copy was changed after it was made: do not rely on its rows"));
    }
}

} // namespace

creation_times creation_times_of(const QVector<staged_file>& files) {
    creation_times created;
    for (const staged_file& file : files) {
        if (file.entry.times.created && file.entry.kind == intake::entry_kind::file) {
            const qint64 since_1970 = *file.entry.times.created - filetime::ticks_before_1970;
            created.insert(QLatin1Char('/') + QFile::decodeName(file.entry.path),
                           since_1970 / filetime::ticks_per_second);
        }
    }
    return created;
}

void tell_as_in_source(run_summary& summary, const staging_outcome& outcome, const QString& source,
                       const QString& staged) {
    const source_names names(outcome.files, source, staged);
    for (QVector<finding>* const findings : {&summary.health.problems, &summary.health.notes}) {
        for (finding& one : *findings) {
            rename(one.path, names, outcome.files, staged);
        }
    }
    for (step_loss& loss : summary.losses) {
        rename(loss.file, names, outcome.files, staged);
    }
    for (QString& found : summary.log.found_sources) {
        rename(found, names, outcome.files, staged);
    }
    health_report findings = outcome.findings;
    for (QVector<finding>* const list : {&findings.problems, &findings.notes}) {
        for (finding& one : *list) {
            one.path = names.in_source(one.path);
        }
    }
    summary.health.add(findings);
    QHash<int, evidence_record> looked_over;
    for (const evidence_record& record : qAsConst(summary.evidence)) {
        looked_over.insert(names.place_of(record.path), record);
    }
    summary.evidence.clear();
    for (int i = 0; i < outcome.files.size(); ++i) {
        const intake::staged_entry& entry = outcome.files[i].entry;
        if (entry.kind != intake::entry_kind::file || entry.is_placeholder()) {
            continue;
        }
        evidence_record record = outcome.files[i].record;
        record.path = names.in_source(record.path);
        if (looked_over.contains(i)) {
            record.kind = looked_over[i].kind;
            record.health = looked_over[i].health;
            tell_if_changed(record, looked_over[i].sha256, summary.health);
        }
        summary.evidence.append(record);
    }
}
