// SPDX-License-Identifier: MIT
// The two tables, and what follows from a single entry.
#include "host/commands/option_table.h"

#include "contract/table_names.h"
#include "host/exports/formats.h"

#include <algorithm>
#include <limits>

namespace {

constexpr value_kind flag = value_kind::none;
constexpr argument_entry examined{"SOURCE", "What to examine; never written to."};
constexpr argument_entry result{"RESULT", "The result folder, or the SQLite file."};

QStringList parts_of(const char* text) {
    return QString::fromUtf8(text).split(QLatin1Char(','), Qt::SkipEmptyParts);
}

} // namespace

// NOLINTNEXTLINE(readability-function-size): data
const QVector<command_entry>& command_table() {
    // clang-format off
    static const QVector<command_entry> table{
        {"extract", "Extracts from the folder SOURCE (it holds Users/) into RESULT.",
         "Extracts the Cortana data of a Windows source.\n"
         "SOURCE holds Users/: a folder, a disk image or an archive; RESULT is created if missing.",
         {examined, {"RESULT", "Folder to write below.", value_kind::folder}},
         "extract takes two paths, SOURCE and RESULT",
         "cortana extract /mnt/evidence /cases/c1\n"
         "cortana extract --user 'anna=CORP\\anna' --tables searches,cookies --json /mnt/evidence /cases/c1\n",
         "0 complete, 1 internal fault, 2 usage, 3 finished with failures or unreadable evidence,\n"
         "4 nothing found, 5 output cannot be written, 130 or 143 cancelled."},
        {"check", "Tells in which state the evidence is, and its digests.",
         "Tells of each file that rows come from where it lies, its size, digest and times, and in which\n"
         "state it is. Nothing is written.",
         {{"SOURCE", "What to look over; never written to."}},
         "check takes one path, SOURCE"},
        {"verify", "Tells what is no longer as the run's record says.",
         "Tells which files of a run are no longer what its record says. SOURCE: the folder where the\n"
         "evidence lies now; without it only what the run wrote is looked at.",
         {{"RESULT", "The result folder, or a run record."},
          {"SOURCE", "The source.", value_kind::path, value_use::optional}},
         "verify takes RESULT and, if wanted, SOURCE"},
        {"rows", "Lists the rows of a result database.",
         "Lists the rows of a result database, one line each.",
         {result},
         "rows takes one folder, RESULT"},
        {"export", "Writes the rows in other formats beside the result database.",
         "Writes the rows of a result database in other formats.",
         {result},
         "export takes one folder, RESULT",
         "cortana export --format csv,xlsx /cases/c1\n"
         "cortana export --format timesketch --out /cases/timeline /cases/c1\n",
         "0 complete, 2 usage, 5 the database cannot be read or the output\n"
         "cannot be written, 130 or 143 cancelled."},
        {"diff", "Tells how the rows of two result databases differ.",
         "Tells how the rows of two result databases differ.",
         {{"RUN1", "A result folder, or the SQLite file."}, {"RUN2", "Another one."}},
         "diff takes two result folders, RUN1 and RUN2"},
        {"schema", "Tells what the tables and columns hold.",
         "Tells what the tables and columns of a result database hold.",
         {},
         "schema takes no arguments"},
        {"log", "Prints a debug log, deciphering it where it is enciphered.",
         "Prints a debug log, deciphering it where it is enciphered.",
         {{"FILE", "The debug log.", value_kind::file}},
         "log takes one file"},
        {"batch create", "Lists the sources in folders for a batch.",
         "Searches the given folders for Windows trees, images and archives, and lists them in MANIFEST, a line each.",
         {{"MANIFEST", "The list to write (JSON lines).", value_kind::file},
          {"SOURCE", "A folder to search, or a source itself; never written to.", value_kind::path, value_use::repeated}},
         "batch create takes MANIFEST and one SOURCE or more",
         "cortana batch create /cases/manifest.jsonl /mnt/evidence\n",
         "0 complete, 2 usage, 3 something could not be read, 4 no source, 5 MANIFEST cannot be written."},
        {"batch check", "Tells whether a manifest is in order and its sources are there.",
         "Tells whether every line of MANIFEST is a source, and whether the sources are there.",
         {{"MANIFEST", "The list of sources.", value_kind::file}},
         "batch check takes one file, MANIFEST", "",
         "0 all in order, 2 a line is none, 3 a source cannot be read."},
        {"batch run", "Extracts one source of a manifest.",
         "Extracts one source of a manifest into a folder OUT that many machines may share. What is done already\n"
         "with the same evidence, version and arguments is not done again.",
         {},
         "batch run takes no arguments, only options",
         "cortana batch run --manifest m.jsonl --id pc-17 --out /shared/out\n"
         "parallel cortana batch run --manifest m.jsonl --index {} --out /shared/out ::: $(seq 60)\n",
         "those of extract. 0, 2, 3 and 4 are final; 1, 5 and signals are worth another run."},
        {"batch status", "Tells how far a batch is.",
         "Tells which sources of a batch are done, running, waiting or failed, and why.",
         {{"OUT", "The folder of the results.", value_kind::folder}},
         "batch status takes one folder, OUT", "",
         "0 nothing failed so far, 3 something did, 5 OUT holds no batch."},
        {"batch merge", "Makes one result of all results of a batch.",
         "Makes one result of all results of a batch, in the manifest's order, with a table of its sources.",
         {{"OUT", "The folder of the results.", value_kind::folder}},
         "batch merge takes one folder, OUT",
         "cortana batch merge /shared/out -o /cases/merged\n",
         "0 complete, 2 usage, 3 sources are missing or failed, or were done with failures,\n"
         "5 a result cannot be read or the merged one cannot be written, 130 or 143 cancelled."},
    };
    // clang-format on
    return table;
}

// NOLINTNEXTLINE(readability-function-size): data
const QVector<option_entry>& option_table() {
    // clang-format off
    static const QVector<option_entry> table{
        {"help,h", "*", flag, "", "Shows help; with a command, the command's own"},
        {"version,v", "*", flag, "", "Shows the versions of this program and of the libraries it works with"},
        {"user", "extract,check", value_kind::profile, "NAME[=DOMAIN_USER]",
         "Examines this profile folder only; may be given several times. DOMAIN_USER goes into the rows",
         "", "", "", value_use::repeated},
        {"type", "extract,check", value_kind::choice, "KIND",
         "Reads SOURCE as folder, image or archive (default: told by its content)",
         "", "type of source", "folder,image,archive"},
        {"volume", "extract,check", value_kind::count, "N",
         "Takes this volume of an image (default: the one that holds Users)"},
        {"archive-limit", "extract,check,batch run", value_kind::size, "SIZE",
         "Unpacks no more than this of an archive (default 64G)"},
        {"no-hive-logs", "extract,check,batch run", flag, "",
         "Leaves the transaction logs of unfinished registry hives aside"},
        {"tables", "extract,check", value_kind::tables, "NAMES",
         "Only these result tables and what they come from, separated by commas"},
        {"tables", "rows", value_kind::tables, "NAMES", "Lists these result tables only, separated by commas"},
        {"tables", "export", value_kind::tables, "NAMES", "Writes these result tables only, separated by commas"},
        {"tables", "diff", value_kind::tables, "NAMES", "Compares these result tables only, separated by commas"},
        {"format", "export", value_kind::formats, "NAMES", "Formats, separated by commas",
         "", "", "", value_use::required},
        {"export", "extract", value_kind::formats, "NAMES",
         "Writes all rows in these formats at the end, into exports beside the database"},
        {"out", "export", value_kind::folder, "FOLDER",
         "Folder to write into (default: exports, beside the database)"},
        {"time-zone", "export", value_kind::time_zone, "NAME",
         "Shows times in this zone as well (for example Europe/Berlin)"},
        {"csv-raw", "export", flag, "", "Writes CSV cells byte for byte, also those that a spreadsheet would run"},
        {"jobs", "extract,check", value_kind::count, "N",
         "Worker processes at once, one a profile (default: the machine's cores)"},
        {"jobs", "batch run", value_kind::count, "N", "Worker processes at once, one a profile", "1"},
        {"step-timeout", "extract,check,batch run", value_kind::count, "SECONDS",
         "Ends a step that makes no progress for so many seconds", "600"},
        {"step-limit", "extract,check,batch run", value_kind::count, "SECONDS",
         "Ends a step that takes longer than so many seconds", "3600"},
        {"memory-limit", "extract,check,batch run", value_kind::size, "SIZE",
         "Ends a worker that holds more memory: bytes, or with K, M or G", "2G"},
        {"output-limit", "extract,batch run", value_kind::size, "SIZE", "Ends a worker whose database grows larger", "4G"},
        {"no-sandbox", "extract,check,batch run", flag, "", "Does not confine the workers"},
        {"all-profiles", "extract,batch run", flag, "", "Makes one run with all profiles instead of one run for each"},
        {"keep-staged", "extract", flag, "", "Keeps the copies that were made of the source's wanted parts"},
        {"clear", "extract", flag, "", "Empties the selected tables first"},
        {"source-number", "extract", value_kind::number, "N",
         "Number of the source, written into every row as SourceN", "1", "source number"},
        {"os-scheme", "extract,batch run", value_kind::text, "TEXT", "Operating system as shown in every row", "Windows"},
        {"log", "extract", value_kind::file, "FILE",
         "Debug log (default RESULT/cortana_debug.log); lines are appended", "", "debug log"},
        {"log-terminal", "extract", flag, "", "Shows the debug log on standard error as well"},
        {"encipher-log", "extract", flag, "", "Enciphers the debug log; read it with: cortana log FILE"},
        {"library", "extract,batch run", value_kind::file, "FILE", "Plugin library (default libcortana.so beside the program)"},
        {"progress", "extract,check", value_kind::choice, "FORM",
         "Progress on standard error: line (default on a terminal), json or none",
         "", "form of progress", "line,json,none"},
        {"json", "extract,check,verify,export,diff,batch status", flag, "", "Prints the outcome as one JSON document"},
        {"json", "schema", flag, "", "Prints one JSON document instead of Markdown"},
        {"user", "batch create", value_kind::profile, "NAME[=DOMAIN_USER]",
         "Has this profile folder only examined, of every source; may be given several times",
         "", "", "", value_use::repeated},
        {"tables", "batch create", value_kind::tables, "NAMES", "Has these result tables only filled"},
        {"sha256sums", "batch create", value_kind::file, "FILE",
         "Takes the digests of sources from lines as sha256sum writes them"},
        {"manifest", "batch run", value_kind::file, "FILE", "The list of sources", "", "manifest", "",
         value_use::required},
        {"id", "batch run", value_kind::text, "ID", "The source with this id"},
        {"index", "batch run", value_kind::count, "N",
         "The source of this line, counted from 1 (default: the environment's SLURM_ARRAY_TASK_ID)"},
        {"out", "batch run", value_kind::folder, "OUT", "Folder of the results, made if missing", "", "", "",
         value_use::required},
        {"out,o", "batch merge", value_kind::folder, "MERGED",
         "Result folder to make; one that was merged before is replaced", "", "", "", value_use::required},
        {"allow-partial", "batch merge", flag, "", "Goes on without sources that are missing or failed"},
        {"force", "batch create", flag, "", "Replaces a manifest that is there"},
        {"force", "batch run", flag, "", "Does again what was done with other evidence, version or arguments"},
        {"quiet", "extract,check", flag, "", "Prints errors only"},
    };
    // clang-format on
    return table;
}

QStringList known_values(const option_entry& option) {
    switch (option.kind) {
    case value_kind::tables:
        return result_table_names();
    case value_kind::formats:
        return format_names();
    default:
        return parts_of(option.choices);
    }
}

QString argument_entry::shown() const {
    const QString word = QString::fromUtf8(name);
    return use == value_use::optional   ? QLatin1Char('[') + word + QLatin1Char(']')
           : use == value_use::repeated ? word + QStringLiteral("...")
                                        : word;
}

QStringList command_entry::words() const {
    return QString::fromUtf8(name).split(QLatin1Char(' '));
}

QString command_entry::argument_names() const {
    QStringList shown;
    for (const argument_entry& argument : arguments) {
        shown.append(argument.shown());
    }
    return shown.join(QLatin1Char(' '));
}

int command_entry::fewest_arguments() const {
    return int(std::count_if(arguments.begin(), arguments.end(),
                             [](const argument_entry& one) { return one.use != value_use::optional; }));
}

int command_entry::most_arguments() const {
    const bool is_open = !arguments.isEmpty() && arguments.last().use == value_use::repeated;
    return is_open ? std::numeric_limits<int>::max() : arguments.size();
}

QStringList option_entry::all_names() const {
    return parts_of(names);
}

QString option_entry::long_name() const {
    return all_names().constFirst();
}

bool option_entry::is_general() const {
    return QLatin1String(commands) == QLatin1String("*");
}

bool option_entry::is_taken_by(const command_entry& command) const {
    return is_general() || parts_of(commands).contains(QString::fromUtf8(command.name));
}

QString option_entry::help_text() const {
    QString text = QString::fromUtf8(help);
    if (kind == value_kind::formats) {
        text += QStringLiteral(": ") + format_names().join(QStringLiteral(", "));
    }
    if (*standard != '\0') {
        text += QStringLiteral(" (default %1)").arg(QString::fromUtf8(standard));
    }
    return text + QLatin1Char('.');
}
