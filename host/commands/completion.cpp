// SPDX-License-Identifier: MIT
// The table of options, asked for one place of a command line.
#include "host/commands/completion.h"

#include "host/commands/option_table.h"
#include "host/console.h"
#include "host/exit_codes.h"
#include "host/health/source_health.h"

#include <QFile>
#include <QFileInfo>

#include <algorithm>

namespace {

const QChar tab = QLatin1Char('\t');

QString offer(const QString& word, const QString& meaning) {
    return word + tab + meaning;
}

const option_entry* option_of(const command_entry& command, const QString& word) {
    const QString name = word.section(QLatin1Char('='), 0, 0);
    const QVector<option_entry>& table = option_table();
    const auto found = std::find_if(table.begin(), table.end(), [&](const option_entry& option) {
        const QStringList names = option.all_names();
        const bool is_short = names.mid(1).contains(name.mid(1)) && name.startsWith(QLatin1Char('-'));
        return option.is_taken_by(command) && (is_short || name == QStringLiteral("--") + names.first());
    });
    return found == table.end() ? nullptr : &*found;
}

// What stands before the word that is being typed.
struct place {
    const command_entry* command = nullptr;
    QStringList arguments;
    QStringList options;                   // long names
    const option_entry* waiting = nullptr; // the option whose value is being typed
};

// Shells that break words at "=" pass "--tables", "=", "x".
QStringList without_equal_signs(QStringList words) {
    if (words.last() == QLatin1String("=")) {
        words.last().clear();
    }
    words.erase(std::remove(words.begin(), words.end() - 1, QStringLiteral("=")), words.end() - 1);
    return words;
}

place place_behind(const command_entry& command, const QStringList& words) {
    place at;
    at.command = &command;
    for (const QString& word : words.mid(command.words().size())) {
        const option_entry* const option = option_of(command, word);
        if (at.waiting != nullptr) {
            at.waiting = nullptr;
        } else if (option != nullptr) {
            at.options.append(option->long_name());
            at.waiting = option->kind == value_kind::none || word.contains(QLatin1Char('=')) ? nullptr : option;
        } else if (!word.startsWith(QLatin1Char('-'))) {
            at.arguments.append(word);
        }
    }
    return at;
}

QStringList shown_names(value_kind kind) {
    switch (kind) {
    case value_kind::file:
    case value_kind::path:
        return {QStringLiteral(":file")};
    case value_kind::folder:
        return {QStringLiteral(":folder")};
    default:
        return {};
    }
}

QStringList values_for(const option_entry& option, const QString& typed, const place& at,
                       const profile_lister& profiles) {
    if (option.kind == value_kind::profile) {
        return at.arguments.isEmpty() ? QStringList() : profiles(at.arguments.first());
    }
    const bool is_list = option.kind == value_kind::tables || option.kind == value_kind::formats;
    const int last_comma = typed.lastIndexOf(QLatin1Char(','));
    const QString before = is_list ? typed.left(last_comma + 1) : QString();
    const QStringList used = before.split(QLatin1Char(','));
    QStringList offered = shown_names(option.kind);
    for (const QString& value : known_values(option)) {
        if (!used.contains(value)) {
            offered.append(before + value);
        }
    }
    return offered;
}

QStringList options_for(const place& at) {
    QStringList offered;
    for (const option_entry& option : option_table()) {
        const bool is_used = at.options.contains(option.long_name()) && option.use != value_use::repeated;
        if (option.is_taken_by(*at.command) && !is_used) {
            offered.append(offer(QStringLiteral("--") + option.long_name(), option.help_text()));
        }
    }
    return offered;
}

// No command is complete yet: the next word of those that begin like this.
QStringList commands_for(const QStringList& before) {
    QStringList offered;
    for (const command_entry& command : command_table()) {
        const QStringList words = command.words();
        if (*command.summary != '\0' && words.size() > before.size() && words.mid(0, before.size()) == before) {
            const bool is_whole = words.size() == before.size() + 1;
            offered.append(offer(words.at(before.size()), is_whole ? QString::fromUtf8(command.summary) : QString()));
        }
    }
    for (const option_entry& option : option_table()) {
        if (option.is_general()) {
            offered.append(offer(QStringLiteral("--") + option.long_name(), option.help_text()));
        }
    }
    offered.removeDuplicates();
    return offered;
}

QStringList offers_at(const place& at, const QString& typed, const profile_lister& profiles) {
    if (at.waiting != nullptr) {
        return values_for(*at.waiting, typed, at, profiles);
    }
    if (typed.startsWith(QLatin1Char('-'))) {
        const option_entry* const option = option_of(*at.command, typed);
        const int equals = typed.indexOf(QLatin1Char('='));
        if (option == nullptr || equals < 0) {
            return options_for(at);
        }
        QStringList offered;
        for (const QString& value : values_for(*option, typed.mid(equals + 1), at, profiles)) {
            offered.append(typed.left(equals + 1) + value);
        }
        return offered;
    }
    const int next = at.arguments.size();
    if (next >= at.command->most_arguments()) {
        return options_for(at);
    }
    return shown_names(at.command->arguments.at(std::min(next, at.command->arguments.size() - 1)).kind);
}

const command_entry* command_before(const QStringList& before) {
    for (const command_entry& command : command_table()) {
        if (before.size() >= command.words().size() && before.mid(0, command.words().size()) == command.words()) {
            return &command;
        }
    }
    return nullptr;
}

} // namespace

QStringList complete_words(const QStringList& words, const profile_lister& profiles) {
    if (words.isEmpty()) {
        return {};
    }
    QStringList before = without_equal_signs(words);
    const QString typed = before.takeLast();
    const command_entry* const command = command_before(before);
    const QStringList offered =
        command == nullptr ? commands_for(before) : offers_at(place_behind(*command, before), typed, profiles);
    QStringList fitting;
    std::copy_if(offered.begin(), offered.end(), std::back_inserter(fitting),
                 [&](const QString& line) { return line.startsWith(QLatin1Char(':')) || line.startsWith(typed); });
    return fitting;
}

int run_complete_command(const QStringList& words) {
    const auto profiles = [](const QString& source) {
        QStringList names;
        health_report unsaid;
        const std::function<bool()> never = [] { return false; };
        const QByteArray root = QFile::encodeName(QFileInfo(source).canonicalFilePath());
        if (root.isEmpty() || !QFileInfo(source).isDir()) {
            return names;
        }
        for (const system_account& account : source_health(root, {}, never, unsaid).profiles()) {
            // The evidence chose it: nothing goes onto a command line that a terminal would not show.
            if (printable(account.system_user) == account.system_user) {
                names.append(account.system_user);
            }
        }
        return names;
    };
    const QStringList offered = complete_words(words, profiles);
    return offered.isEmpty() || print(offered.join(QLatin1Char('\n')) + QLatin1Char('\n')) ? exit_complete
                                                                                           : exit_output;
}
