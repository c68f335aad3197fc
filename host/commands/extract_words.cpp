// SPDX-License-Identifier: MIT
// What both commands read alike, and what only an extraction needs.
#include "host/commands/extract_words.h"

#include "host/run/account_name.h"

#include <QThread>

#include <algorithm>
#include <unistd.h>

namespace {

void add_user(const QString& text, QList<system_account>& users) {
    const system_account account = account_of(text).value_or(system_account());
    const auto same = [&](const system_account& known) { return known.system_user == account.system_user; };
    const auto known = std::find_if(users.begin(), users.end(), same);
    if (known == users.end()) {
        users.append(account);
    } else if (known->domain_user.isEmpty()) { // named twice: examined once, or its rows would stand there twice
        known->domain_user = account.domain_user;
    }
}

// Standard error shows a line when it is a terminal.
progress_form progress_of(const command_words& words) {
    const QString form = words.has("progress") ? words.text("progress") : QStringLiteral("line");
    if (form == QLatin1String("json")) {
        return progress_form::json_lines;
    }
    const bool is_shown = form == QLatin1String("line") && !words.has("quiet") && ::isatty(STDERR_FILENO) == 1;
    return is_shown ? progress_form::terminal_line : progress_form::none;
}

// What "extract" and "check" share.
extract_options read_work(const command_words& words) {
    extract_options options;
    options.source = words.argument(0);
    for (const QString& user : words.texts("user")) {
        add_user(user, options.users);
    }
    options.tables = words.names("tables");
    options.source_type = words.text("type");
    options.volume = words.number("volume");
    options.archive_limit = words.size("archive-limit");
    options.hive_logs = !words.has("no-hive-logs");
    options.jobs = words.has("jobs") ? words.number("jobs") : std::max(1, QThread::idealThreadCount());
    options.limits.silence_seconds = words.number("step-timeout");
    options.limits.step_seconds = words.number("step-limit");
    options.limits.memory = words.size("memory-limit");
    options.sandbox = !words.has("no-sandbox");
    options.progress = progress_of(words);
    options.json = words.has("json");
    options.quiet = words.has("quiet");
    return options;
}

} // namespace

command_line read_extract(const command_words& words) {
    command_line line;
    line.what = command::extract;
    line.extract = read_work(words);
    line.extract.words = words.as_typed();
    line.extract.result = words.argument(1);
    line.extract.limits.output = words.size("output-limit");
    line.extract.source_number = words.number("source-number");
    line.extract.os_scheme = words.text("os-scheme");
    line.extract.log_file = words.text("log");
    line.extract.log_terminal = words.has("log-terminal");
    if (line.extract.log_terminal && line.extract.progress == progress_form::terminal_line) {
        line.extract.progress = progress_form::none; // the two would write into each other
    }
    line.extract.library = words.text("library");
    line.extract.export_formats = words.names("export");
    line.extract.keep_staged = words.has("keep-staged");
    line.extract.clear = words.has("clear");
    line.extract.all_profiles = words.has("all-profiles");
    line.extract.encipher_log = words.has("encipher-log");
    return line;
}

command_line read_check(const command_words& words) {
    command_line line;
    line.what = command::check;
    line.extract = read_work(words);
    return line;
}
