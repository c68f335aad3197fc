// SPDX-License-Identifier: MIT
// To a file or a pipe the log goes byte for byte; on a terminal its control characters are made visible.
#include "host/commands/log_command.h"

#include "host/console.h"
#include "host/exit_codes.h"
#include "host/record/log_reader.h"

#include <QFile>

#include <cstdio>
#include <unistd.h>

namespace {

bool print_piece(const log_piece& piece, bool to_terminal) {
    const bool has_break = piece.text.endsWith('\n');
    const QByteArray line = has_break ? piece.text.left(piece.text.size() - 1) : piece.text;
    const QByteArray shown = to_terminal ? printable(QString::fromUtf8(line)).toUtf8() : line;
    const bool whole_line = has_break || piece.what == log_piece::deciphered;
    return print(whole_line ? shown + '\n' : shown);
}

} // namespace

int run_log_command(const QString& file) {
    QFile log(file);
    if (!log.open(QIODevice::ReadOnly)) {
        say(QStringLiteral("%1 cannot be opened: %2").arg(file, log.errorString()));
        return exit_usage;
    }
    const bool to_terminal = ::isatty(fileno(stdout)) == 1;
    log_reader reader(log);
    log_piece piece;
    int code = exit_complete;
    while (reader.next(piece)) {
        if (piece.what == log_piece::broken) {
            say(QStringLiteral("record %1 of %2 cannot be deciphered").arg(piece.number).arg(file));
            code = exit_failures;
        } else if (!print_piece(piece, to_terminal)) {
            say(QStringLiteral("standard output cannot be written"));
            return exit_output;
        }
    }
    if (log.error() != QFileDevice::NoError) {
        say(QStringLiteral("%1 could not be read to its end: %2").arg(file, log.errorString()));
        return exit_failures;
    }
    return code;
}
