// SPDX-License-Identifier: MIT
// The debug log: the plugin's only channel for failures. Every line is flushed at once, so that a crash loses nothing.
#include "common/encryptor_string.h"
#include "common/plugin_static_function.h"

#include <QLocale>
#include <QtDebug>

namespace {

// "virtual void a::b(QString)" to "a::b".
QString short_function_name(const QString& function_info) {
    QString name = function_info.trimmed();
    if (name.isEmpty()) {
        return QStringLiteral("FUNCTION INFO IS EMPTY ---FAILED--- debug!!!");
    }
    const int bracket = name.indexOf(QLatin1Char('('));
    if (bracket >= 0) {
        name = name.left(bracket).trimmed();
    }
    return name.mid(name.lastIndexOf(QLatin1Char(' ')) + 1).trimmed();
}

QString engine_field(int engine_type) {
    switch (engine_type) {
    case 0:
        return QStringLiteral("[VANTOR_DESK]");
    case 1:
        return QStringLiteral("[VANTOR_SCOUT]");
    case 2:
        return QStringLiteral("[VANTOR_FIELD]");
    default:
        return QStringLiteral("[ -----FAILED----- to find Engine Type ][") + QString::number(engine_type) +
               QLatin1Char(']');
    }
}

QString log_line(const QString& message, const QString& function_info, int engine_type) {
    // QLocale::c(): month names are English whatever the machine speaks.
    const QString time = QLocale::c().toString(QDateTime::currentDateTime(), QStringLiteral("yyyy-MMM-ddThh-mm-ss"));
    return QLatin1Char('[') + time + QLatin1Char(']') + engine_field(engine_type) +
           QStringLiteral("[Artifacts Extraction][") + short_function_name(function_info) + QStringLiteral("]:-- ") +
           message;
}

} // namespace

void plugin_static_function::app_debug(QString message, QString function_info) {
    if (!debug_mode_status_bool) {
        return;
    }
    const QString line = log_line(message, function_info, type_engine_int);
    if (debug_print_on_terminal_bool) {
        qDebug().noquote() << line;
    }
    if (!debug_print_in_file_bool || !debug_file_regular_QFile.isOpen()) {
        return;
    }
    if (debug_encryption_status_bool) {
        const QString enciphered =
            encrypt_string(line, QStringLiteral("static void plugin_static_function::app_debug(QString, QString)"));
        debug_file_regular_QFile.write(enciphered.toLocal8Bit() + enciphered_record_separator);
    } else {
        debug_file_regular_QFile.write(line.toLocal8Bit() + '\n');
    }
    debug_file_regular_QFile.flush();
}

void plugin_static_function::open_debug_file() {
    if (!debug_mode_status_bool || !debug_print_in_file_bool) {
        return;
    }
    close_debug_file(); // one that is still open under another path
    if (debug_file_path_QString.isEmpty()) {
        return;
    }
    debug_file_regular_QFile.setFileName(debug_file_path_QString);
    debug_file_regular_QFile.open(QIODevice::Append);
}

void plugin_static_function::close_debug_file() {
    if (debug_file_regular_QFile.isOpen()) {
        debug_file_regular_QFile.flush();
        debug_file_regular_QFile.close();
    }
}

QString plugin_static_function::encrypt_string(QString text, QString /*caller*/) {
    if (text.isEmpty()) {
        return QStringLiteral("");
    }
    return encryptor_string().encryptToString(text);
}
