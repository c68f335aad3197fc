// SPDX-License-Identifier: MIT
// Every command of the program with its arguments and options, as data. What parses the command line, the help texts,
// the manual page and the completions of the shells all come from here: a new command or option is a line of the table,
// and a line in the function that reads the command's words.
#pragma once

#include <QStringList>
#include <QVector>

// What a value must be, and what a shell offers for it.
enum class value_kind {
    none,      // a flag
    count,     // a whole number of at least 1
    number,    // a whole number
    size,      // bytes, or with K, M, G or T
    text,      // any text
    file,      // a file's name, not empty
    folder,    // a folder's name, not empty
    path,      // a folder or a file, not empty
    tables,    // names of result tables, separated by commas
    formats,   // names of export formats, separated by commas
    profile,   // NAME or NAME=DOMAIN_USER, neither leading anywhere
    time_zone, // a name of the zone database
    choice,    // one of the entry's choices
};

// How often an argument or an option may stand on a command line.
enum class value_use { required, optional, repeated };

struct argument_entry {
    const char* name;
    const char* help; // ends in a full stop
    value_kind kind = value_kind::path;
    value_use use = value_use::required; // repeated: once or more often

    // As a usage line shows it: NAME, [NAME] or NAME...
    QString shown() const;
};

struct command_entry {
    const char* name;        // one word, or two with a blank
    const char* summary;     // its line of the general help, in the third person; empty: told to nobody
    const char* description; // in its own help
    QVector<argument_entry> arguments;
    const char* taken;           // why other arguments are refused
    const char* examples = "";   // command lines, one a line
    const char* exit_codes = ""; // as the help tells them

    QStringList words() const;
    // The arguments as a usage line shows them, for example "RESULT [SOURCE]".
    QString argument_names() const;
    int fewest_arguments() const;
    int most_arguments() const;
};

struct option_entry {
    const char* names;    // the long name, behind it letters, separated by commas
    const char* commands; // that take it, separated by commas; "*": all, and no command at all
    value_kind kind;
    const char* value;                   // the value's name in help texts; empty for a flag
    const char* help;                    // without a full stop at its end
    const char* standard = "";           // the value where none is given
    const char* thing = "";              // what a refusal calls the value
    const char* choices = "";            // separated by commas
    value_use use = value_use::optional; // repeated: none or more

    QString long_name() const;
    QStringList all_names() const;
    bool is_general() const; // "*"
    bool is_taken_by(const command_entry& command) const;
    // The help with the value that holds where none is given, and its full stop.
    QString help_text() const;
};

// In the order of the help. Both live as long as the program.
const QVector<command_entry>& command_table();
const QVector<option_entry>& option_table();

// The values that a shell may offer and a refusal tells: tables, formats, choices; an empty list for other kinds.
QStringList known_values(const option_entry& option);
