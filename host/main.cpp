// SPDX-License-Identifier: MIT
// The command-line host: drives the plugin library as the suite would, from a terminal or a script.
#include "host/commands/batch_command.h"
#include "host/commands/batch_manifest_command.h"
#include "host/commands/check_command.h"
#include "host/commands/completion.h"
#include "host/commands/diff_command.h"
#include "host/commands/export_command.h"
#include "host/commands/extract_command.h"
#include "host/commands/log_command.h"
#include "host/commands/options.h"
#include "host/commands/schema_command.h"
#include "host/console.h"
#include "host/environment.h"
#include "host/exit_codes.h"
#include "host/record/versions.h"
#include "host/run/cancellation.h"
#include "host/run/profile_worker.h"

#include <QCoreApplication>
#include <QFile>

#include <cstring>
#include <exception>

namespace {

// Qt must not take words of ours for its own options, so it gets the program's name only.
QStringList words_of(int count, char** words) {
    QStringList list;
    for (int i = 0; i < count; ++i) {
        list.append(QFile::decodeName(words[i]));
    }
    return list;
}

int print_text(const QString& text) {
    return print(text) ? exit_complete : exit_output;
}

int run(const command_line& line) {
    switch (line.what) {
    case command::extract:
        take_cancel_signals();
        return run_extract_command(line.extract);
    case command::check:
        take_cancel_signals();
        return run_check_command(line.extract);
    case command::verify:
        return run_verify_command(line.verify);
    case command::log:
        take_qt_messages(true); // the cipher's own warnings; each record is told of by its number
        return run_log_command(line.log_file);
    case command::rows:
        return run_rows_command(line.rows);
    case command::export_tables:
        take_cancel_signals();
        return run_export_command(line.exports);
    case command::diff:
        return run_diff_command(line.diff);
    case command::schema:
        return run_schema_command(line.schema_as_json);
    case command::batch_create:
        return run_batch_create_command(line.batch_create);
    case command::batch_check:
        return run_batch_check_command(line.batch_manifest);
    case command::batch_run:
        take_cancel_signals();
        return run_batch_run_command(line.batch_run);
    case command::batch_status:
        return run_batch_status_command(line.batch_status);
    case command::batch_merge:
        take_cancel_signals();
        return run_batch_merge_command(line.batch_merge);
    case command::version:
        return print_text(version_text());
    case command::help:
        return print_text(line.text);
    case command::refused:
        break;
    }
    say(line.text);
    say(QStringLiteral("see cortana --help"));
    return exit_usage;
}

} // namespace

int main(int argc, char** argv) {
    try {
        prepare_environment();
        take_qt_messages(true); // Qt's remarks about a missing session are no concern of the user's
        hold_cancel_signals();
        if (argc > 1 && std::strcmp(argv[1], worker_word) == 0) {
            return run_worker(argc, argv, profile_task);
        }
        char program[] = "cortana";
        char* only_program[] = {argc > 0 ? argv[0] : program, nullptr};
        int one = 1;
        const QCoreApplication application(one, only_program);
        settle_file_name_encoding();
        if (argc > 1 && std::strcmp(argv[1], complete_word) == 0) {
            return run_complete_command(words_of(argc, argv).mid(2));
        }
        take_qt_messages(false);
        return run(read_command_line(argc > 0 ? words_of(argc, argv) : QStringList(QStringLiteral("cortana"))));
    } catch (const std::exception& fault) {
        say(QStringLiteral("internal fault: ") + QString::fromLocal8Bit(fault.what()));
        return exit_internal;
    }
}
