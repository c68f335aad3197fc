// SPDX-License-Identifier: MIT
// A manifest is made from what lies in folders, and looked over before a batch begins.
#include "host/commands/batch_manifest_command.h"

#include "host/batch/evidence_state.h"
#include "host/batch/manifest_file.h"
#include "host/batch/publish.h"
#include "host/batch/source_ids.h"
#include "host/batch/source_search.h"
#include "host/commands/examined_source.h"
#include "host/console.h"
#include "host/exit_codes.h"
#include "source/native_names.h"
#include "source/real_location.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QHash>

#include <cerrno>
#include <sys/stat.h>

namespace {

// Path as listed -> digest, of lines as sha256sum writes them.
using listed_digests = QHash<QString, QString>;

bool read_digests(const QString& file, listed_digests& digests) {
    constexpr int digits = 64;
    QFile opened(file);
    if (!opened.open(QIODevice::ReadOnly)) {
        return false;
    }
    const QList<QByteArray> lines = opened.readAll().split('\n');
    for (const QByteArray& line : lines) {
        const QString path = QFile::decodeName(line.mid(digits + 2)); // a blank, and a second one or "*"
        if (!path.isEmpty()) {
            const QString absolute = QFileInfo(QFileInfo(file).absoluteDir(), path).absoluteFilePath();
            digests.insert(absolute, QString::fromLatin1(line.left(digits)).toLower());
        }
    }
    return opened.error() == QFileDevice::NoError;
}

// The sources of all that was given. False: the exit code is set and the reason said.
bool search_all(const batch_create_options& options, batch::search_result& found, int& code) {
    const QByteArray folder = real_location(QFile::encodeName(QFileInfo(options.manifest).absolutePath()));
    if (folder.isEmpty()) {
        code =
            refuse(exit_output,
                   QStringLiteral("the manifest %1 cannot be written: %2").arg(options.manifest, error_words(errno)));
        return false;
    }
    for (const QString& source : options.sources) {
        const QByteArray real = find_source(source, code);
        if (real.isEmpty()) {
            return false;
        }
        if (is_at_or_below(folder, real)) {
            code =
                refuse(exit_usage,
                       QStringLiteral("the manifest %1 would lie inside the source %2").arg(options.manifest, source));
            return false;
        }
        batch::search_for_sources(real, found);
    }
    return true;
}

QByteArray manifest_of(const batch_create_options& options, const listed_digests& digests,
                       batch::search_result& found) {
    QByteArray text;
    batch::taken_ids ids;
    QSet<QByteArray> paths;
    int number = 0;
    for (const batch::found_source& source : qAsConst(found.sources)) {
        if (!is_utf8(source.path)) {
            found.findings.add_problem(shown_path(source.path),
                                       QStringLiteral("its name is not UTF-8, so a manifest cannot hold it"));
        } else if (!paths.contains(source.path)) {
            const QString path = QString::fromUtf8(source.path);
            paths.insert(source.path);
            text += batch::line_of({batch::id_of(source.name, ids), path, source.type, ++number, 0, options.profiles,
                                    options.tables, digests.value(path)});
        }
    }
    return text;
}

int say_findings_of(const batch::search_result& found) {
    say_findings(found.findings, false);
    return found.findings.problem_count > 0 ? exit_failures : exit_complete;
}

} // namespace

int run_batch_create_command(const batch_create_options& options) {
    int code = exit_complete;
    QString reason;
    listed_digests digests;
    if (QFileInfo::exists(options.manifest) && !options.force) {
        return refuse(exit_usage, QStringLiteral("%1 is there already; --force replaces it").arg(options.manifest));
    }
    if (!options.digests.isEmpty() && !read_digests(options.digests, digests)) {
        return refuse(exit_usage, QStringLiteral("the digests %1 cannot be read").arg(options.digests));
    }
    batch::search_result found;
    if (!search_all(options, found, code)) {
        return code;
    }
    const QByteArray text = manifest_of(options, digests, found);
    code = say_findings_of(found);
    if (text.isEmpty()) {
        return refuse(code == exit_complete ? int{exit_nothing_found} : code, QStringLiteral("no source was found"));
    }
    const batch::manifest made = batch::read_manifest(text);
    if (!made.problems.isEmpty()) {
        return refuse(exit_usage, made.problems.first());
    }
    if (!batch::write_whole(options.manifest, text, reason)) {
        return refuse(exit_output, reason);
    }
    return print(QStringLiteral("%1 sources in %2\n").arg(made.sources.size()).arg(printable(options.manifest)))
               ? code
               : int{exit_output};
}

int run_batch_check_command(const QString& file) {
    QString reason;
    const QByteArray text = batch::manifest_text(file, reason);
    if (text.isNull()) {
        return refuse(exit_usage, QStringLiteral("the manifest %1: %2").arg(file, reason));
    }
    const batch::manifest manifest = batch::read_manifest(text);
    for (const QString& problem : manifest.problems) {
        say(problem);
    }
    if (!manifest.problems.isEmpty() || manifest.sources.isEmpty()) {
        return refuse(exit_usage, QStringLiteral("%1 is no manifest that can be used").arg(file));
    }
    int unreadable = 0;
    for (const batch::manifest_source& source : manifest.sources) {
        batch::evidence_state state;
        if (!look_at_evidence(source, state, reason)) {
            say(QStringLiteral("could not read: %1: %2: %3").arg(source.id, source.path, reason));
            ++unreadable;
        }
    }
    const QString told = QStringLiteral("%1 sources, %2 of them can be read\n")
                             .arg(manifest.sources.size())
                             .arg(manifest.sources.size() - unreadable);
    return !print(told) ? exit_output : unreadable > 0 ? exit_failures : exit_complete;
}
