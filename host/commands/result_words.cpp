// SPDX-License-Identifier: MIT
// Values of taken words, into the options of each command.
#include "host/commands/result_words.h"

command_line read_verify(const command_words& words) {
    command_line line;
    line.what = command::verify;
    line.verify = {words.argument(0), words.argument(1), words.has("json")};
    return line;
}

command_line read_rows(const command_words& words) {
    command_line line;
    line.what = command::rows;
    line.rows = {words.argument(0), words.names("tables")};
    return line;
}

command_line read_export(const command_words& words) {
    command_line line;
    line.what = command::export_tables;
    line.exports.result = words.argument(0);
    line.exports.folder = words.text("out");
    line.exports.formats = words.names("format");
    line.exports.tables = words.names("tables");
    if (words.has("time-zone")) {
        line.exports.zone = QTimeZone(words.text("time-zone").toUtf8());
    }
    line.exports.exact = words.has("csv-raw");
    line.exports.json = words.has("json");
    return line;
}

command_line read_diff(const command_words& words) {
    command_line line;
    line.what = command::diff;
    line.diff = {words.argument(0), words.argument(1), words.names("tables"), words.has("json")};
    return line;
}

command_line read_schema(const command_words& words) {
    command_line line;
    line.what = command::schema;
    line.schema_as_json = words.has("json");
    return line;
}

command_line read_log(const command_words& words) {
    command_line line;
    line.what = command::log;
    line.log_file = words.argument(0);
    return line;
}
