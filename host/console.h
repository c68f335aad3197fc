// SPDX-License-Identifier: MIT
// Everything that the program prints. Names and paths are chosen by the evidence, so nothing of them reaches a
// terminal that could move its cursor, change its colours or turn its writing direction.
#pragma once

#include <QByteArray>
#include <QString>

// A control character, line separator or direction mark, and the code that stands for it: \n, \t, \xNN or \uNNNN.
bool is_unfit(QChar character);
QString code_of(QChar character);
// The text with control characters, line separators and direction marks as \n, \t, \xNN or \uNNNN.
QString printable(const QString& text);

// One line on standard error, "cortana: " in front; made printable.
void say(const QString& message);
// The message that was said last; empty: none was.
QString last_said();

// Text as it is, to standard output, in UTF-8. False: it cannot be written.
bool print(const QString& text);
bool print(const QByteArray& bytes);

// Sends Qt's own messages and the plugin's terminal log to standard error, a printable line each. Quiet: nothing
// but fatal ones.
void take_qt_messages(bool quiet);
