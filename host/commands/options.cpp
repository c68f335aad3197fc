// SPDX-License-Identifier: MIT
// One parser for the words before the command, one for each command.
#include "host/commands/options.h"

#include "contract/table_names.h"
#include "host/commands/export_options.h"
#include "host/commands/option_words.h"
#include "host/nearest_name.h"
#include "host/run/process_limits.h"

#include <QCommandLineParser>
#include <QMap>
#include <QThread>

#include <algorithm>
#include <optional>
#include <unistd.h>

namespace {

const QString tables_name = QStringLiteral("tables");

QString general_help(const QString& program) {
    return QStringLiteral("Usage: %1 COMMAND [options] ARGUMENTS\n"
                          "Extracts the Cortana data of a Windows source into a SQLite database.\n"
                          "\n"
                          "Commands:\n"
                          "  extract SOURCE RESULT  Extracts from the folder SOURCE (it holds Users/) into RESULT.\n"
                          "  rows RESULT            Lists the rows of a result database.\n"
                          "  export RESULT          Writes the rows in other formats beside the result database.\n"
                          "  diff RUN1 RUN2         Tells how the rows of two result databases differ.\n"
                          "  schema                 Tells what the tables and columns hold.\n"
                          "  log FILE               Prints a debug log, deciphering it where it is enciphered.\n"
                          "\n"
                          "Options:\n"
                          "  -h, --help             Shows this help; with a command, the command's own help.\n"
                          "  -v, --version          Shows the versions of this program and of its libraries.\n"
                          "\n"
                          "Examples:\n"
                          "  cortana extract /mnt/evidence /cases/c1\n"
                          "  cortana rows --tables searches /cases/c1\n")
        .arg(program);
}

const char* const extract_examples =
    "\nExamples:\n"
    "  cortana extract /mnt/evidence /cases/c1\n"
    "  cortana extract --user 'anna=CORP\\anna' --tables searches,cookies --json /mnt/evidence /cases/c1\n"
    "\nExit codes: 0 complete, 1 internal fault, 2 usage, 3 finished with failures or unreadable evidence,\n"
    "4 nothing found, 5 output cannot be written, 130 or 143 cancelled.\n";

void describe_extract(QCommandLineParser& parser) {
    const auto add = [&parser](const char* name, const char* text, const char* value = nullptr) {
        parser.addOption({QLatin1String(name), QLatin1String(text), QLatin1String(value)});
    };
    parser.setApplicationDescription(QStringLiteral("Extracts the Cortana data of a Windows source.\n"
                                                    "SOURCE is the folder that stands for C:/ and holds Users/; "
                                                    "RESULT is created if missing."));
    parser.addPositionalArgument(QStringLiteral("extract"), QStringLiteral("The command."));
    parser.addPositionalArgument(QStringLiteral("SOURCE"), QStringLiteral("Folder to examine; never written to."));
    parser.addPositionalArgument(QStringLiteral("RESULT"), QStringLiteral("Folder to write below."));
    add_common_options(parser);
    add("user", "Examines this profile folder only; may be given several times. DOMAIN_USER goes into the rows.",
        "NAME[=DOMAIN_USER]");
    add("all-profiles", "Makes one run with all profiles instead of one run for each.");
    add("tables", "Fills these result tables only, separated by commas.", "NAMES");
    add("clear", "Empties the selected tables first.");
    add("jobs", "Worker processes at once, one a profile (default: the machine's cores).", "N");
    add("step-timeout", "Ends a table's step that makes no progress for so many seconds (default 600).", "SECONDS");
    add("step-limit", "Ends a table's step that takes longer than so many seconds (default 3600).", "SECONDS");
    add("memory-limit", "Ends a worker that holds more memory: bytes, or with K, M or G (default 2G).", "SIZE");
    add("output-limit", "Ends a worker whose database grows larger (default 4G).", "SIZE");
    add("no-sandbox", "Does not confine the workers.");
    add("progress", "Progress on standard error: line (default on a terminal), json or none.", "FORM");
    add("source-number", "Number of the source, written into every row as SourceN (default 1).", "N");
    add("os-scheme", "Operating system as shown in every row (default Windows).", "TEXT");
    add("log", "Debug log (default RESULT/cortana_debug.log); lines are appended.", "FILE");
    add("log-terminal", "Shows the debug log on standard error as well.");
    add("encipher-log", "Enciphers the debug log; read it with: cortana log FILE.");
    add("library", "Plugin library (default libcortana.so beside the program).", "FILE");
    add("json", "Prints the summary as one JSON document.");
    add("quiet", "Prints errors only.");
}

// NAME or NAME=DOMAIN_USER. Both name a folder below Users/, so neither may lead elsewhere.
bool read_user(const QString& text, QList<system_account>& users) {
    const int equals = text.indexOf(QLatin1Char('='));
    const system_account account{equals < 0 ? text : text.left(equals),
                                 equals < 0 ? QStringLiteral("") : text.mid(equals + 1)};
    for (const QString& name : {account.system_user, account.domain_user}) {
        if (name.contains(QLatin1Char('/')) || name == QLatin1String(".") || name == QLatin1String("..")) {
            return false;
        }
    }
    const auto same = [&](const system_account& known) { return known.system_user == account.system_user; };
    const auto known = std::find_if(users.begin(), users.end(), same);
    if (known == users.end()) {
        users.append(account);
    } else if (known->domain_user.isEmpty()) { // named twice: examined once, or its rows would stand there twice
        known->domain_user = account.domain_user;
    }
    return !account.system_user.isEmpty();
}

// Reads a whole number of at least one, where the option is given. False: it is none.
template <class Number>
bool read_count(const QCommandLineParser& parser, const char* name, Number& number) {
    const QString option = QLatin1String(name);
    if (!parser.isSet(option)) {
        return true;
    }
    bool is_number = false;
    const int read = parser.value(option).toInt(&is_number);
    number = read;
    return is_number && read >= 1;
}

bool read_size(const QCommandLineParser& parser, const char* name, qint64& size) {
    const QString option = QLatin1String(name);
    if (!parser.isSet(option)) {
        return true;
    }
    const std::optional<qint64> read = parse_size(parser.value(option));
    size = read.value_or(0);
    return size >= 1;
}

// Standard error shows a line when it is a terminal that nothing else is written to.
QString read_progress(const QCommandLineParser& parser, extract_options& options) {
    const QString name = QStringLiteral("progress");
    const bool quiet = parser.isSet(QStringLiteral("quiet")) || parser.isSet(QStringLiteral("log-terminal"));
    const QString form = parser.isSet(name) ? parser.value(name) : QStringLiteral("line");
    if (form == QLatin1String("json")) {
        options.progress = progress_form::json_lines;
    } else if (form == QLatin1String("line")) {
        options.progress = !quiet && ::isatty(STDERR_FILENO) == 1 ? progress_form::terminal_line : progress_form::none;
    } else if (form != QLatin1String("none")) {
        return QStringLiteral("there is no form of progress '%1': line, json or none").arg(form);
    }
    return {};
}

// Returns why they are refused, or an empty text.
QString read_limits(const QCommandLineParser& parser, extract_options& options) {
    options.jobs = std::max(1, QThread::idealThreadCount());
    const std::pair<const char*, bool> readings[] = {
        {"jobs", read_count(parser, "jobs", options.jobs)},
        {"step-timeout", read_count(parser, "step-timeout", options.limits.silence_seconds)},
        {"step-limit", read_count(parser, "step-limit", options.limits.step_seconds)},
        {"memory-limit", read_size(parser, "memory-limit", options.limits.memory)},
        {"output-limit", read_size(parser, "output-limit", options.limits.output)},
    };
    for (const auto& [name, is_possible] : readings) {
        if (!is_possible) {
            const QString option = QLatin1String(name);
            return QStringLiteral("--%1 does not take '%2'").arg(option, parser.value(option));
        }
    }
    return read_progress(parser, options);
}

QString read_extract_values(const QCommandLineParser& parser, extract_options& options) {
    const auto has = [&parser](const char* name) { return parser.isSet(QLatin1String(name)); };
    const auto value = [&parser](const char* name) { return parser.value(QLatin1String(name)); };
    for (const QString& user : parser.values(QStringLiteral("user"))) {
        if (!read_user(user, options.users)) {
            return QStringLiteral("'%1' cannot name a profile folder").arg(user);
        }
    }
    options.tables = has("tables") ? QStringList() : result_table_names();
    const QString tables_refused = has("tables") ? read_tables(value("tables"), options.tables) : QString();
    if (!tables_refused.isEmpty()) {
        return tables_refused;
    }
    if (has("source-number")) {
        bool is_number = false;
        options.source_number = value("source-number").toInt(&is_number);
        if (!is_number) {
            return QStringLiteral("the source number '%1' is not a number").arg(value("source-number"));
        }
    }
    const QString limits_refused = read_limits(parser, options);
    if (!limits_refused.isEmpty()) {
        return limits_refused;
    }
    if (has("log") && value("log").isEmpty()) {
        return QStringLiteral("the debug log's name is empty");
    }
    options.os_scheme = has("os-scheme") ? value("os-scheme") : QStringLiteral("Windows");
    options.log_file = value("log");
    options.library = value("library");
    options.clear = has("clear");
    options.all_profiles = has("all-profiles");
    options.log_terminal = has("log-terminal");
    options.encipher_log = has("encipher-log");
    options.sandbox = !has("no-sandbox");
    options.json = has("json");
    options.quiet = has("quiet");
    return {};
}

command_line read_extract(const QStringList& arguments) {
    QCommandLineParser parser;
    describe_extract(parser);
    if (const auto settled =
            settle_words(parser, arguments, 2, "extract takes two folders, SOURCE and RESULT", extract_examples)) {
        return *settled;
    }
    command_line line;
    line.what = command::extract;
    line.extract.source = parser.positionalArguments().at(1);
    line.extract.result = parser.positionalArguments().at(2);
    const QString refused = read_extract_values(parser, line.extract);
    return refused.isEmpty() ? line : refusal(refused);
}

command_line read_rows(const QStringList& arguments) {
    QCommandLineParser parser;
    parser.setApplicationDescription(QStringLiteral("Lists the rows of a result database, one line each."));
    parser.addPositionalArgument(QStringLiteral("rows"), QStringLiteral("The command."));
    parser.addPositionalArgument(QStringLiteral("RESULT"), QStringLiteral("The result folder, or the SQLite file."));
    add_common_options(parser);
    parser.addOption(
        {tables_name, QStringLiteral("Lists these result tables only, separated by commas."), QStringLiteral("NAMES")});
    if (const auto settled = settle_words(parser, arguments, 1, "rows takes one folder, RESULT")) {
        return *settled;
    }
    command_line line;
    line.what = command::rows;
    line.rows.result = parser.positionalArguments().at(1);
    if (!parser.isSet(tables_name)) {
        line.rows.tables = result_table_names();
        return line;
    }
    const QString refused = read_tables(parser.value(tables_name), line.rows.tables);
    return refused.isEmpty() ? line : refusal(refused);
}

command_line read_log(const QStringList& arguments) {
    QCommandLineParser parser;
    parser.setApplicationDescription(QStringLiteral("Prints a debug log, deciphering it where it is enciphered."));
    parser.addPositionalArgument(QStringLiteral("log"), QStringLiteral("The command."));
    parser.addPositionalArgument(QStringLiteral("FILE"), QStringLiteral("The debug log."));
    add_common_options(parser);
    if (const auto settled = settle_words(parser, arguments, 1, "log takes one file")) {
        return *settled;
    }
    command_line line;
    line.what = command::log;
    line.log_file = parser.positionalArguments().at(1);
    return line;
}

} // namespace

command_line read_command_line(const QStringList& arguments) {
    for (const QString& argument : arguments.mid(1)) {
        if (argument.contains(QChar::ReplacementCharacter)) {
            return refusal(QStringLiteral("'%1' is not UTF-8: such a name cannot be passed on").arg(argument));
        }
    }
    QCommandLineParser parser;
    parser.setOptionsAfterPositionalArgumentsMode(QCommandLineParser::ParseAsPositionalArguments);
    add_common_options(parser);
    if (!parser.parse(arguments)) {
        return refusal(parser.errorText());
    }
    const QStringList words = parser.positionalArguments();
    if (asks_for_help(parser)) {
        return help_answer(general_help(arguments.first()));
    }
    if (asks_for_versions(parser)) {
        return versions_answer();
    }
    if (words.isEmpty()) {
        return refusal(QStringLiteral("a command is missing: extract, rows, export, diff, schema or log"));
    }
    const QMap<QString, command_line (*)(const QStringList&)> commands{
        {QStringLiteral("diff"), read_diff},       {QStringLiteral("export"), read_export},
        {QStringLiteral("extract"), read_extract}, {QStringLiteral("log"), read_log},
        {QStringLiteral("rows"), read_rows},       {QStringLiteral("schema"), read_schema},
    };
    if (!commands.contains(words.first())) {
        return refusal(QStringLiteral("there is no command '%1'; did you mean '%2'?")
                           .arg(words.first(), nearest_name(words.first(), commands.keys())));
    }
    return commands.value(words.first())(arguments);
}
