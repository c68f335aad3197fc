// SPDX-License-Identifier: MIT
// Values of taken words, into the options of each command.
#include "host/commands/batch_words.h"

command_line read_batch_create(const command_words& words) {
    command_line line;
    line.what = command::batch_create;
    line.batch_create.manifest = words.argument(0);
    line.batch_create.sources = words.given().mid(1);
    line.batch_create.profiles = words.texts("user");
    line.batch_create.profiles.removeDuplicates();
    line.batch_create.tables = words.has("tables") ? words.names("tables") : QStringList();
    line.batch_create.digests = words.text("sha256sums");
    line.batch_create.force = words.has("force");
    return line;
}

command_line read_batch_check(const command_words& words) {
    command_line line;
    line.what = command::batch_check;
    line.batch_manifest = words.argument(0);
    return line;
}

command_line read_batch_run(const command_words& words) {
    command_line line;
    line.what = command::batch_run;
    batch_run_options& run = line.batch_run;
    run.manifest = words.text("manifest");
    run.id = words.text("id");
    run.index = words.number("index");
    if (words.has("id") && words.has("index")) {
        return refusal(QStringLiteral("--id and --index both name the source: one of them is enough"));
    }
    run.out = words.text("out");
    run.force = words.has("force");
    run.extract.words = words.as_typed();
    run.extract.archive_limit = words.size("archive-limit");
    run.extract.hive_logs = !words.has("no-hive-logs");
    run.extract.all_profiles = words.has("all-profiles");
    run.extract.os_scheme = words.text("os-scheme");
    run.extract.jobs = words.number("jobs");
    run.extract.limits = {words.number("step-timeout"), words.number("step-limit"), words.size("memory-limit"),
                          words.size("output-limit")};
    run.extract.sandbox = !words.has("no-sandbox");
    run.extract.library = words.text("library");
    return line;
}

command_line read_batch_status(const command_words& words) {
    command_line line;
    line.what = command::batch_status;
    line.batch_status = {words.argument(0), words.has("json")};
    return line;
}

command_line read_batch_merge(const command_words& words) {
    command_line line;
    line.what = command::batch_merge;
    line.batch_merge = {words.argument(0), words.text("out"), words.has("allow-partial")};
    return line;
}
