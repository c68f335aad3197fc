// SPDX-License-Identifier: MIT
// Finds the command among the words, and hands the rest to the function that reads it.
#include "host/commands/options.h"

#include "host/commands/batch_words.h"
#include "host/commands/extract_words.h"
#include "host/commands/help_text.h"
#include "host/commands/option_words.h"
#include "host/commands/result_words.h"
#include "host/nearest_name.h"

#include <QCommandLineParser>

#include <algorithm>

namespace {

// The entry whose words the command line begins with; null when there is none.
const command_entry* command_of(const QStringList& words) {
    const QVector<command_entry>& table = command_table();
    const auto found = std::find_if(table.begin(), table.end(), [&](const command_entry& command) {
        return words.mid(0, command.words().size()) == command.words();
    });
    return found == table.end() ? nullptr : &*found;
}

QString listed(QStringList names) {
    const QString last = names.takeLast();
    return names.isEmpty() ? last : names.join(QStringLiteral(", ")) + QStringLiteral(" or ") + last;
}

// No command stands at the beginning of these words.
command_line refused_command(const QStringList& words) {
    const QString first = words.value(0);
    const bool is_group = !first.isEmpty() && !command_names(first).isEmpty();
    const QStringList names = command_names(is_group ? first : QString());
    if (words.size() < (is_group ? 2 : 1)) {
        return refusal(QStringLiteral("a command is missing: ") + listed(names));
    }
    const QString typed = is_group ? first + QLatin1Char(' ') + words.at(1) : first;
    return refusal(
        QStringLiteral("there is no command '%1'; did you mean '%2'?").arg(typed, nearest_name(typed, names)));
}

command_line read_by_command(const command_words& words, const QString& name) {
    using reader = command_line (*)(const command_words&);
    static const QMap<QString, reader> readers{
        {QStringLiteral("extract"), read_extract},
        {QStringLiteral("check"), read_check},
        {QStringLiteral("verify"), read_verify},
        {QStringLiteral("rows"), read_rows},
        {QStringLiteral("export"), read_export},
        {QStringLiteral("diff"), read_diff},
        {QStringLiteral("schema"), read_schema},
        {QStringLiteral("log"), read_log},
        {QStringLiteral("batch create"), read_batch_create},
        {QStringLiteral("batch check"), read_batch_check},
        {QStringLiteral("batch run"), read_batch_run},
        {QStringLiteral("batch status"), read_batch_status},
        {QStringLiteral("batch merge"), read_batch_merge},
    };
    return readers.value(name)(words);
}

bool asks_for_help(const QStringList& words) {
    return words.contains(QStringLiteral("--help")) || words.contains(QStringLiteral("-h"));
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
    add_general_options(parser);
    if (!parser.parse(arguments)) {
        return refusal(parser.errorText());
    }
    const QStringList words = parser.positionalArguments();
    if (parser.isSet(QStringLiteral("help"))) {
        return help_answer(general_help(arguments.first(), {}));
    }
    if (parser.isSet(QStringLiteral("version"))) {
        return versions_answer();
    }
    const command_entry* const command = command_of(words);
    if (command == nullptr) {
        const QString group = words.value(0);
        return asks_for_help(words) && !command_names(group).isEmpty()
                   ? help_answer(general_help(arguments.first(), group))
                   : refused_command(words);
    }
    const command_words read(*command, arguments);
    return read.answer() ? *read.answer() : read_by_command(read, QString::fromUtf8(command->name));
}
