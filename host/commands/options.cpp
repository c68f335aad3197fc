// SPDX-License-Identifier: MIT
// One parser for the words before the command, one for each command.
#include "host/commands/options.h"

#include "contract/table_names.h"
#include "host/commands/export_options.h"
#include "host/commands/extract_words.h"
#include "host/commands/option_words.h"
#include "host/nearest_name.h"

#include <QCommandLineParser>
#include <QMap>

#include <optional>

namespace {

const QString tables_name = QStringLiteral("tables");

QString general_help(const QString& program) {
    return QStringLiteral("Usage: %1 COMMAND [options] ARGUMENTS\n"
                          "Extracts the Cortana data of a Windows source into a SQLite database.\n"
                          "\n"
                          "Commands:\n"
                          "  extract SOURCE RESULT  Extracts from the folder SOURCE (it holds Users/) into RESULT.\n"
                          "  check SOURCE           Tells in which state the evidence is, and its digests.\n"
                          "  verify RESULT [SOURCE] Tells what is no longer as the run's record says.\n"
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

command_line read_verify(const QStringList& arguments) {
    QCommandLineParser parser;
    parser.setApplicationDescription(
        QStringLiteral("Tells which files of a run are no longer what its record says. SOURCE: the folder where the\n"
                       "evidence lies now; without it only what the run wrote is looked at."));
    parser.addPositionalArgument(QStringLiteral("verify"), QStringLiteral("The command."));
    parser.addPositionalArgument(QStringLiteral("RESULT"), QStringLiteral("The result folder, or a run record."));
    parser.addPositionalArgument(QStringLiteral("SOURCE"), QStringLiteral("The source."), QStringLiteral("[SOURCE]"));
    add_common_options(parser);
    parser.addOption({QStringLiteral("json"), QStringLiteral("Prints the findings as one JSON document.")});
    parser.parse(arguments);
    const int paths = parser.positionalArguments().size() == 3 ? 2 : 1;
    if (const auto settled = settle_words(parser, arguments, paths, "verify takes RESULT and, if wanted, SOURCE")) {
        return *settled;
    }
    command_line line;
    line.what = command::verify;
    line.verify = {parser.positionalArguments().at(1), parser.positionalArguments().value(2),
                   parser.isSet(QStringLiteral("json"))};
    return line;
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
        return refusal(
            QStringLiteral("a command is missing: extract, check, verify, rows, export, diff, schema or log"));
    }
    const QMap<QString, command_line (*)(const QStringList&)> commands{
        {QStringLiteral("check"), read_check},   {QStringLiteral("diff"), read_diff},
        {QStringLiteral("export"), read_export}, {QStringLiteral("extract"), read_extract},
        {QStringLiteral("log"), read_log},       {QStringLiteral("rows"), read_rows},
        {QStringLiteral("schema"), read_schema}, {QStringLiteral("verify"), read_verify},
    };
    if (!commands.contains(words.first())) {
        return refusal(QStringLiteral("there is no command '%1'; did you mean '%2'?")
                           .arg(words.first(), nearest_name(words.first(), commands.keys())));
    }
    return commands.value(words.first())(arguments);
}
