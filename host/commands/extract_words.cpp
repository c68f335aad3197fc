// SPDX-License-Identifier: MIT
// One parser for each of the two commands, over a part that they share.
#include "host/commands/extract_words.h"

#include "contract/table_names.h"
#include "host/commands/option_words.h"
#include "host/run/process_limits.h"

#include <QCommandLineParser>
#include <QThread>

#include <algorithm>
#include <optional>
#include <unistd.h>

namespace {

// Describes an option to a parser.
class option_adder {
public:
    explicit option_adder(QCommandLineParser& described) : parser(described) {}
    void operator()(const char* name, const char* text, const char* value = nullptr) const {
        parser.addOption({QLatin1String(name), QLatin1String(text), QLatin1String(value)});
    }

private:
    QCommandLineParser& parser;
};

const char* const extract_examples =
    "\nExamples:\n"
    "  cortana extract /mnt/evidence /cases/c1\n"
    "  cortana extract --user 'anna=CORP\\anna' --tables searches,cookies --json /mnt/evidence /cases/c1\n"
    "\nExit codes: 0 complete, 1 internal fault, 2 usage, 3 finished with failures or unreadable evidence,\n"
    "4 nothing found, 5 output cannot be written, 130 or 143 cancelled.\n";

// The commands "extract" and "check" share these.
void add_work_options(QCommandLineParser& parser) {
    const option_adder add(parser);
    add("user", "Examines this profile folder only; may be given several times. DOMAIN_USER goes into the rows.",
        "NAME[=DOMAIN_USER]");
    add("type", "Reads SOURCE as folder, image or archive (default: told by its content).", "KIND");
    add("volume", "Takes this volume of an image (default: the one that holds Users).", "N");
    add("archive-limit", "Unpacks no more than this of an archive (default 64G).", "SIZE");
    add("no-hive-logs", "Leaves the transaction logs of unfinished registry hives aside.");
    add("tables", "Only these result tables and what they come from, separated by commas.", "NAMES");
    add("jobs", "Worker processes at once, one a profile (default: the machine's cores).", "N");
    add("step-timeout", "Ends a step that makes no progress for so many seconds (default 600).", "SECONDS");
    add("step-limit", "Ends a step that takes longer than so many seconds (default 3600).", "SECONDS");
    add("memory-limit", "Ends a worker that holds more memory: bytes, or with K, M or G (default 2G).", "SIZE");
    add("no-sandbox", "Does not confine the workers.");
    add("progress", "Progress on standard error: line (default on a terminal), json or none.", "FORM");
    add("json", "Prints the outcome as one JSON document.");
    add("quiet", "Prints errors only.");
}

void describe_extract(QCommandLineParser& parser) {
    const option_adder add(parser);
    parser.setApplicationDescription(QStringLiteral("Extracts the Cortana data of a Windows source.\n"
                                                    "SOURCE holds Users/: a folder, a disk image or an archive; "
                                                    "RESULT is created if missing."));
    parser.addPositionalArgument(QStringLiteral("extract"), QStringLiteral("The command."));
    parser.addPositionalArgument(QStringLiteral("SOURCE"), QStringLiteral("What to examine; never written to."));
    parser.addPositionalArgument(QStringLiteral("RESULT"), QStringLiteral("Folder to write below."));
    add_common_options(parser);
    add_work_options(parser);
    add("all-profiles", "Makes one run with all profiles instead of one run for each.");
    add("keep-staged", "Keeps the copies that were made of the source's wanted parts.");
    add("clear", "Empties the selected tables first.");
    add("output-limit", "Ends a worker whose database grows larger (default 4G).", "SIZE");
    add("source-number", "Number of the source, written into every row as SourceN (default 1).", "N");
    add("os-scheme", "Operating system as shown in every row (default Windows).", "TEXT");
    add("log", "Debug log (default RESULT/cortana_debug.log); lines are appended.", "FILE");
    add("log-terminal", "Shows the debug log on standard error as well.");
    add("encipher-log", "Enciphers the debug log; read it with: cortana log FILE.");
    add("library", "Plugin library (default libcortana.so beside the program).", "FILE");
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
    const bool quiet = options.quiet || options.log_terminal;
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

QString not_taken(const char* name, const QCommandLineParser& parser) {
    const QString option = QLatin1String(name);
    return QStringLiteral("--%1 does not take '%2'").arg(option, parser.value(option));
}

// Returns why they are refused, or an empty text.
QString read_limits(const QCommandLineParser& parser, extract_options& options) {
    options.jobs = std::max(1, QThread::idealThreadCount());
    const std::pair<const char*, bool> readings[] = {
        {"jobs", read_count(parser, "jobs", options.jobs)},
        {"step-timeout", read_count(parser, "step-timeout", options.limits.silence_seconds)},
        {"step-limit", read_count(parser, "step-limit", options.limits.step_seconds)},
        {"memory-limit", read_size(parser, "memory-limit", options.limits.memory)},
        {"volume", read_count(parser, "volume", options.volume)},
        {"archive-limit", read_size(parser, "archive-limit", options.archive_limit)},
    };
    for (const auto& [name, is_possible] : readings) {
        if (!is_possible) {
            return not_taken(name, parser);
        }
    }
    return read_progress(parser, options);
}

// What "extract" and "check" share. Returns why it is refused, or an empty text.
QString read_work_values(const QCommandLineParser& parser, extract_options& options) {
    for (const QString& user : parser.values(QStringLiteral("user"))) {
        if (!read_user(user, options.users)) {
            return QStringLiteral("'%1' cannot name a profile folder").arg(user);
        }
    }
    const QString tables = QStringLiteral("tables");
    options.tables = parser.isSet(tables) ? QStringList() : result_table_names();
    const QString refused = parser.isSet(tables) ? read_tables(parser.value(tables), options.tables) : QString();
    const QStringList types{QString(), QStringLiteral("folder"), QStringLiteral("image"), QStringLiteral("archive")};
    options.source_type = parser.value(QStringLiteral("type"));
    if (!types.contains(options.source_type)) {
        return QStringLiteral("there is no type of source '%1': folder, image or archive").arg(options.source_type);
    }
    options.hive_logs = !parser.isSet(QStringLiteral("no-hive-logs"));
    options.sandbox = !parser.isSet(QStringLiteral("no-sandbox"));
    options.json = parser.isSet(QStringLiteral("json"));
    options.quiet = parser.isSet(QStringLiteral("quiet"));
    return refused.isEmpty() ? read_limits(parser, options) : refused;
}

QString read_extract_values(const QCommandLineParser& parser, extract_options& options) {
    const auto has = [&parser](const char* name) { return parser.isSet(QLatin1String(name)); };
    const auto value = [&parser](const char* name) { return parser.value(QLatin1String(name)); };
    options.log_terminal = has("log-terminal");
    const QString refused = read_work_values(parser, options);
    if (!refused.isEmpty()) {
        return refused;
    }
    if (!read_size(parser, "output-limit", options.limits.output)) {
        return not_taken("output-limit", parser);
    }
    if (has("source-number")) {
        bool is_number = false;
        options.source_number = value("source-number").toInt(&is_number);
        if (!is_number) {
            return QStringLiteral("the source number '%1' is not a number").arg(value("source-number"));
        }
    }
    if (has("log") && value("log").isEmpty()) {
        return QStringLiteral("the debug log's name is empty");
    }
    options.os_scheme = has("os-scheme") ? value("os-scheme") : QStringLiteral("Windows");
    options.log_file = value("log");
    options.library = value("library");
    options.keep_staged = has("keep-staged");
    options.clear = has("clear");
    options.all_profiles = has("all-profiles");
    options.encipher_log = has("encipher-log");
    return {};
}

} // namespace

command_line read_extract(const QStringList& arguments) {
    QCommandLineParser parser;
    describe_extract(parser);
    if (const auto settled =
            settle_words(parser, arguments, 2, "extract takes two paths, SOURCE and RESULT", extract_examples)) {
        return *settled;
    }
    command_line line;
    line.what = command::extract;
    line.extract.words = arguments.mid(1);
    line.extract.source = parser.positionalArguments().at(1);
    line.extract.result = parser.positionalArguments().at(2);
    const QString refused = read_extract_values(parser, line.extract);
    return refused.isEmpty() ? line : refusal(refused);
}

command_line read_check(const QStringList& arguments) {
    QCommandLineParser parser;
    parser.setApplicationDescription(QStringLiteral(
        "Tells of each file that rows come from where it lies, its size, digest and times, and in which\n"
        "state it is. Nothing is written."));
    parser.addPositionalArgument(QStringLiteral("check"), QStringLiteral("The command."));
    parser.addPositionalArgument(QStringLiteral("SOURCE"), QStringLiteral("What to look over; never written to."));
    add_common_options(parser);
    add_work_options(parser);
    if (const auto settled = settle_words(parser, arguments, 1, "check takes one path, SOURCE")) {
        return *settled;
    }
    command_line line;
    line.what = command::check;
    line.extract.source = parser.positionalArguments().at(1);
    const QString refused = read_work_values(parser, line.extract);
    return refused.isEmpty() ? line : refusal(refused);
}
