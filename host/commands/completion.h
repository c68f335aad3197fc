// SPDX-License-Identifier: MIT
// What a shell may offer for the word that is being typed.
#pragma once

#include <QString>
#include <QStringList>

#include <functional>

// The first word of a hidden command line: complete-words WORD... CURRENT, the words behind the program's name. Prints
// what complete_words() gives, a line each.
inline constexpr const char* complete_word = "complete-words";

// The profile folders of a source, as they may be given to --user; an empty list where they cannot be told.
using profile_lister = std::function<QStringList(const QString& source)>;

// words: behind the program's name, the last one is being typed and may be empty. Each entry is a whole word that the
// typed one can become, behind a tab what it means; or one of ":file" and ":folder", for which the shell lists names.
QStringList complete_words(const QStringList& words, const profile_lister& profiles);

// Exit code of the hidden command.
int run_complete_command(const QStringList& words);
