// SPDX-License-Identifier: MIT
// Printing with the C library's streams: Qt has none that tells a failed write at once.
#include "host/console.h"

#include <QtGlobal>

#include <cstdio>

namespace {

QString said_last;

void write_error_line(const QString& line) {
    const QByteArray bytes = printable(line).toUtf8() + '\n';
    std::fwrite(bytes.constData(), 1, static_cast<size_t>(bytes.size()), stderr);
}

void on_qt_message(QtMsgType, const QMessageLogContext&, const QString& text) {
    write_error_line(text);
}

void on_qt_message_quietly(QtMsgType type, const QMessageLogContext&, const QString& text) {
    if (type == QtFatalMsg) {
        write_error_line(text);
    }
}

} // namespace

bool is_unfit(QChar character) {
    const ushort code = character.unicode();
    const bool control = code < 0x20 || (code >= 0x7f && code < 0xa0);
    const bool direction = code == 0x061c || code == 0x200e || code == 0x200f || (code >= 0x2028 && code <= 0x202e) ||
                           (code >= 0x2066 && code <= 0x2069);
    return control || direction;
}

QString code_of(QChar character) {
    switch (character.unicode()) {
    case '\n':
        return QStringLiteral("\\n");
    case '\r':
        return QStringLiteral("\\r");
    case '\t':
        return QStringLiteral("\\t");
    default:
        break;
    }
    const bool narrow = character.unicode() < 0x100;
    return (narrow ? QStringLiteral("\\x") : QStringLiteral("\\u")) +
           QStringLiteral("%1").arg(character.unicode(), narrow ? 2 : 4, 16, QLatin1Char('0'));
}

QString printable(const QString& text) {
    QString shown;
    shown.reserve(text.size());
    for (const QChar character : text) {
        if (is_unfit(character)) {
            shown += code_of(character);
        } else {
            shown += character;
        }
    }
    return shown;
}

void say(const QString& message) {
    said_last = message;
    write_error_line(QStringLiteral("cortana: ") + message);
}

QString last_said() {
    return said_last;
}

bool print(const QString& text) {
    return print(text.toUtf8());
}

bool print(const QByteArray& bytes) {
    const auto size = static_cast<size_t>(bytes.size());
    return std::fwrite(bytes.constData(), 1, size, stdout) == size && std::fflush(stdout) == 0;
}

void take_qt_messages(bool quiet) {
    qInstallMessageHandler(quiet ? on_qt_message_quietly : on_qt_message);
}
