// SPDX-License-Identifier: MIT
// A parser fed from the table, and the judgement of what it found.
#include "host/commands/option_words.h"

#include "host/commands/help_text.h"
#include "host/commands/option_values.h"
#include "host/run/process_limits.h"

#include <algorithm>

namespace {

QCommandLineOption described(const option_entry& option) {
    QStringList names = option.all_names();
    std::rotate(names.begin(), names.begin() + 1, names.end()); // letters first, as help texts have them
    return {names, option.help_text(), QString::fromUtf8(option.value)};
}

} // namespace

command_line refusal(const QString& reason) {
    command_line refused;
    refused.text = reason;
    return refused;
}

command_line help_answer(const QString& text) {
    command_line answer;
    answer.what = command::help;
    answer.text = text;
    return answer;
}

command_line versions_answer() {
    command_line answer;
    answer.what = command::version;
    return answer;
}

void add_general_options(QCommandLineParser& parser) {
    for (const option_entry& option : option_table()) {
        if (option.is_general()) {
            parser.addOption(described(option));
        }
    }
}

command_words::command_words(const command_entry& read_command, const QStringList& arguments)
    : command(read_command), typed(arguments.mid(1)) {
    describe();
    settled = judge(arguments);
}

void command_words::describe() {
    parser.setApplicationDescription(QString::fromUtf8(command.description));
    parser.addPositionalArgument(QString::fromUtf8(command.name), QStringLiteral("The command."));
    for (const argument_entry& argument : command.arguments) {
        parser.addPositionalArgument(QString::fromUtf8(argument.name), QString::fromUtf8(argument.help),
                                     argument.shown());
    }
    for (const option_entry& option : option_table()) {
        if (option.is_taken_by(command)) {
            parser.addOption(described(option));
        }
    }
}

std::optional<command_line> command_words::judge(const QStringList& arguments) {
    const bool understood = parser.parse(arguments);
    if (has("help")) {
        return help_answer(parser.helpText() + examples_text(command));
    }
    if (has("version")) {
        return versions_answer();
    }
    if (!understood) {
        return refusal(parser.errorText());
    }
    const QStringList values = given();
    if (values.size() < command.fewest_arguments() || values.size() > command.most_arguments() ||
        values.contains(QString())) {
        return refusal(QString::fromUtf8(command.taken));
    }
    for (const option_entry& option : option_table()) {
        const QString refused = option.is_taken_by(command) ? refused_option(option) : QString();
        if (!refused.isEmpty()) {
            return refusal(refused);
        }
    }
    return std::nullopt;
}

QString command_words::refused_option(const option_entry& option) const {
    const QStringList values = parser.values(option.long_name());
    if (values.isEmpty() && option.use == value_use::required) {
        const QString known = known_values(option).join(QStringLiteral(", "));
        return QStringLiteral("--%1 is missing").arg(option.long_name()) +
               (known.isEmpty() ? QString() : QStringLiteral(": ") + known);
    }
    for (const QString& value : values) {
        const QString refused = refused_value(option, value);
        if (!refused.isEmpty()) {
            return refused;
        }
    }
    return {};
}

const option_entry& command_words::entry(const char* option) const {
    const QVector<option_entry>& table = option_table();
    return *std::find_if(table.begin(), table.end(), [&](const option_entry& one) {
        return one.long_name() == QLatin1String(option) && one.is_taken_by(command);
    });
}

bool command_words::has(const char* option) const {
    return parser.isSet(QLatin1String(option));
}

QString command_words::text(const char* option) const {
    return has(option) ? parser.value(QLatin1String(option)) : QString::fromUtf8(entry(option).standard);
}

QStringList command_words::texts(const char* option) const {
    return parser.values(QLatin1String(option));
}

int command_words::number(const char* option) const {
    return text(option).toInt();
}

qint64 command_words::size(const char* option) const {
    return parse_size(text(option)).value_or(0);
}

QStringList command_words::names(const char* option) const {
    const option_entry& described = entry(option);
    if (!has(option)) {
        return described.kind == value_kind::tables ? known_values(described) : QStringList();
    }
    return names_in(described, text(option));
}
