// SPDX-License-Identifier: MIT
// A line for each file that differs, then the sum.
#include "host/commands/verify_command.h"

#include "contract/result_layout.h"
#include "host/console.h"
#include "host/exit_codes.h"
#include "host/record/verify.h"

#include <QFileInfo>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

namespace {

QString record_in(const QString& result) {
    return QFileInfo(result).isDir() ? result_layout::plugin_folder(result, artifact_name) + QStringLiteral("run.json")
                                     : result;
}

QByteArray as_json(const verification& found) {
    QJsonArray files;
    for (const verified_file& file : found.files) {
        files.append(QJsonObject{{QStringLiteral("path"), file.path}, {QStringLiteral("difference"), file.difference}});
    }
    const QJsonObject document{{QStringLiteral("files"), files}, {QStringLiteral("differences"), found.differences}};
    return QJsonDocument(document).toJson(QJsonDocument::Indented);
}

QString as_text(const verification& found) {
    QString text;
    for (const verified_file& file : found.files) {
        if (!file.difference.isEmpty()) {
            text += printable(QStringLiteral("%1: %2").arg(file.path, file.difference)) + QLatin1Char('\n');
        }
    }
    return text + QStringLiteral("%1 of %2 files as recorded\n")
                      .arg(found.files.size() - found.differences)
                      .arg(found.files.size());
}

} // namespace

int run_verify_command(const verify_options& options) {
    const QString record = record_in(options.result);
    const verification found = verify_run(record, options.source);
    if (!found.unreadable.isEmpty()) {
        say(QStringLiteral("cannot read the run record %1: %2").arg(record, found.unreadable));
        return exit_output;
    }
    if (!(options.json ? print(as_json(found)) : print(as_text(found)))) {
        say(QStringLiteral("standard output cannot be written"));
        return exit_output;
    }
    return found.differences == 0 ? exit_complete : exit_failures;
}
