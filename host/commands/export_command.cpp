// SPDX-License-Identifier: MIT
// Runs the export and tells what came of it.
#include "host/commands/export_command.h"

#include "host/commands/export_outcome.h"
#include "host/console.h"
#include "host/exit_codes.h"
#include "host/record/read_only_database.h"
#include "host/run/cancellation.h"

#include <QJsonDocument>
#include <QJsonObject>

namespace {

export_request request_of(const export_options& options) {
    export_request request;
    request.database = database_in(options.result);
    request.folder = options.folder.isEmpty() ? export_folder_beside(request.database) : options.folder;
    request.folder_is_named = !options.folder.isEmpty();
    request.formats = options.formats;
    request.tables = options.tables;
    request.zone = options.zone;
    request.exact = options.exact;
    return request;
}

QByteArray document_of(const export_request& request, const export_outcome& outcome, int code) {
    QJsonObject document = export_object(request, outcome);
    document.insert(QStringLiteral("version"), QStringLiteral(CORTANA_VERSION));
    document.insert(QStringLiteral("exit_code"), code);
    return QJsonDocument(document).toJson();
}

} // namespace

int run_export_command(const export_options& options) {
    const export_request request = request_of(options);
    const export_outcome outcome = run_export(request, is_cancelled);
    const bool done = outcome.error.isEmpty();
    const int code = done ? exit_complete : outcome.cancelled ? cancel_exit_code() : int(exit_output);
    if (!done) {
        say(outcome.error);
    }
    const bool told =
        options.json ? print(document_of(request, outcome, code)) : !done || print(export_text(request, outcome));
    if (!told) {
        say(QStringLiteral("standard output cannot be written"));
    }
    return told ? code : int(exit_output);
}
