// SPDX-License-Identifier: MIT
// Implementation of what all commands read alike.
#include "host/commands/option_words.h"

#include "contract/table_names.h"
#include "host/nearest_name.h"

#include <QCommandLineParser>

namespace {

const QString help_name = QStringLiteral("help");
const QString version_name = QStringLiteral("version");

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

void add_common_options(QCommandLineParser& parser) {
    parser.addOption({{QStringLiteral("h"), help_name}, QStringLiteral("Shows this help.")});
    parser.addOption({{QStringLiteral("v"), version_name},
                      QStringLiteral("Shows the versions of this program and of the libraries it works with.")});
}

bool asks_for_help(const QCommandLineParser& parser) {
    return parser.isSet(help_name);
}

bool asks_for_versions(const QCommandLineParser& parser) {
    return parser.isSet(version_name);
}

std::optional<command_line> settle_words(QCommandLineParser& parser, const QStringList& arguments, int paths,
                                         const char* taken, const char* examples) {
    const bool understood = parser.parse(arguments);
    const QStringList words = parser.positionalArguments();
    if (asks_for_help(parser)) {
        return help_answer(parser.helpText() + QLatin1String(examples));
    }
    if (asks_for_versions(parser)) {
        return versions_answer();
    }
    if (!understood) {
        return refusal(parser.errorText());
    }
    if (words.size() != 1 + paths || words.contains(QString())) {
        return refusal(QLatin1String(taken));
    }
    return std::nullopt;
}

QString read_tables(const QString& text, QStringList& tables) {
    QStringList wanted = text.split(QLatin1Char(','));
    for (QString& name : wanted) {
        name = name.trimmed();
        if (!result_table_names().contains(name)) {
            return QStringLiteral("there is no table '%1'; did you mean '%2'?")
                .arg(name, nearest_name(name, result_table_names()));
        }
    }
    for (const QString& name : result_table_names()) {
        if (wanted.contains(name)) {
            tables.append(name);
        }
    }
    return {};
}
