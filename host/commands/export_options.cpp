// SPDX-License-Identifier: MIT
// Formats and zone are looked up here, so that a mistyped one is refused before anything is written.
#include "host/commands/export_options.h"

#include "contract/table_names.h"
#include "host/commands/option_words.h"
#include "host/exports/formats.h"
#include "host/nearest_name.h"

#include <QCommandLineParser>

namespace {

QString read_formats(const QString& text, QStringList& formats) {
    for (const QString& word : text.split(QLatin1Char(','))) {
        const QString name = word.trimmed();
        if (!format_names().contains(name)) {
            return QStringLiteral("there is no format '%1'; did you mean '%2'?")
                .arg(name, nearest_name(name, format_names()));
        }
        formats.append(name);
    }
    formats.removeDuplicates(); // two writers would meet in one file
    return {};
}

const char* const export_examples = "\nExamples:\n"
                                    "  cortana export --format csv,xlsx /cases/c1\n"
                                    "  cortana export --format timesketch --out /cases/timeline /cases/c1\n"
                                    "\nExit codes: 0 complete, 2 usage, 5 the database cannot be read or the output\n"
                                    "cannot be written, 130 or 143 cancelled.\n";

void describe_export(QCommandLineParser& parser) {
    const auto add = [&parser](const char* name, const QString& text, const char* value = nullptr) {
        parser.addOption({QLatin1String(name), text, QLatin1String(value)});
    };
    parser.setApplicationDescription(QStringLiteral("Writes the rows of a result database in other formats."));
    parser.addPositionalArgument(QStringLiteral("export"), QStringLiteral("The command."));
    parser.addPositionalArgument(QStringLiteral("RESULT"), QStringLiteral("The result folder, or the SQLite file."));
    add("format",
        QStringLiteral("Formats, separated by commas: ") + format_names().join(QStringLiteral(", ")) + QLatin1Char('.'),
        "NAMES");
    add("out", QStringLiteral("Folder to write into (default: exports, beside the database)."), "FOLDER");
    add("tables", QStringLiteral("Writes these result tables only, separated by commas."), "NAMES");
    add("time-zone", QStringLiteral("Shows times in this zone as well (for example Europe/Berlin)."), "NAME");
    add("csv-raw", QStringLiteral("Writes CSV cells byte for byte, also those that a spreadsheet would run."));
    add("json", QStringLiteral("Prints what was written as one JSON document."));
}

QString read_export_values(const QCommandLineParser& parser, export_options& options) {
    const auto value = [&parser](const char* name) { return parser.value(QLatin1String(name)); };
    if (!parser.isSet(QStringLiteral("format"))) {
        return QStringLiteral("--format is missing: ") + format_names().join(QStringLiteral(", "));
    }
    const QString refused = read_formats(value("format"), options.formats);
    if (!refused.isEmpty()) {
        return refused;
    }
    if (parser.isSet(QStringLiteral("out")) && value("out").isEmpty()) {
        return QStringLiteral("the folder's name is empty");
    }
    if (parser.isSet(QStringLiteral("time-zone"))) {
        const QByteArray zone = value("time-zone").toUtf8();
        if (!QTimeZone::isTimeZoneIdAvailable(zone)) {
            return QStringLiteral("there is no time zone '%1'").arg(value("time-zone"));
        }
        options.zone = QTimeZone(zone);
    }
    options.folder = value("out");
    options.exact = parser.isSet(QStringLiteral("csv-raw"));
    options.json = parser.isSet(QStringLiteral("json"));
    return {};
}

// All tables where none are named.
QString read_chosen_tables(const QCommandLineParser& parser, QStringList& tables) {
    const QString name = QStringLiteral("tables");
    if (parser.isSet(name)) {
        return read_tables(parser.value(name), tables);
    }
    tables = result_table_names();
    return {};
}

} // namespace

command_line read_export(const QStringList& arguments) {
    QCommandLineParser parser;
    describe_export(parser);
    add_common_options(parser);
    if (const auto settled = settle_words(parser, arguments, 1, "export takes one folder, RESULT", export_examples)) {
        return *settled;
    }
    command_line line;
    line.what = command::export_tables;
    line.exports.result = parser.positionalArguments().at(1);
    QString refused = read_export_values(parser, line.exports);
    if (refused.isEmpty()) {
        refused = read_chosen_tables(parser, line.exports.tables);
    }
    return refused.isEmpty() ? line : refusal(refused);
}

command_line read_diff(const QStringList& arguments) {
    QCommandLineParser parser;
    parser.setApplicationDescription(QStringLiteral("Tells how the rows of two result databases differ."));
    parser.addPositionalArgument(QStringLiteral("diff"), QStringLiteral("The command."));
    parser.addPositionalArgument(QStringLiteral("RUN1"), QStringLiteral("A result folder, or the SQLite file."));
    parser.addPositionalArgument(QStringLiteral("RUN2"), QStringLiteral("Another one."));
    add_common_options(parser);
    parser.addOption(
        {QStringLiteral("tables"), QStringLiteral("Compares these result tables only."), QStringLiteral("NAMES")});
    const QString json_name = QStringLiteral("json");
    parser.addOption({json_name, QStringLiteral("Prints one JSON document.")});
    if (const auto settled = settle_words(parser, arguments, 2, "diff takes two result folders, RUN1 and RUN2")) {
        return *settled;
    }
    command_line line;
    line.what = command::diff;
    line.diff.first = parser.positionalArguments().at(1);
    line.diff.second = parser.positionalArguments().at(2);
    line.diff.json = parser.isSet(json_name);
    const QString refused = read_chosen_tables(parser, line.diff.tables);
    return refused.isEmpty() ? line : refusal(refused);
}

command_line read_schema(const QStringList& arguments) {
    QCommandLineParser parser;
    parser.setApplicationDescription(QStringLiteral("Tells what the tables and columns of a result database hold."));
    parser.addPositionalArgument(QStringLiteral("schema"), QStringLiteral("The command."));
    add_common_options(parser);
    const QString json_name = QStringLiteral("json");
    parser.addOption({json_name, QStringLiteral("Prints one JSON document instead of Markdown.")});
    if (const auto settled = settle_words(parser, arguments, 0, "schema takes no arguments")) {
        return *settled;
    }
    command_line line;
    line.what = command::schema;
    line.schema_as_json = parser.isSet(json_name);
    return line;
}
