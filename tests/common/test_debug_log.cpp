// SPDX-License-Identifier: MIT
// The debug log's lines, switches and file, plain and enciphered, and the shared state behind them.
#include "common/encryptor_string.h"
#include "common/plugin_static_function.h"

#include <QLocale>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <QtTest>

namespace {

QStringList terminal_lines;

void keep_terminal_line(QtMsgType type, const QMessageLogContext& context, const QString& text) {
    terminal_lines << QStringLiteral("%1 %2 %3").arg(int(type)).arg(QLatin1String(context.category), text);
}

} // namespace

class test_debug_log : public QObject {
    Q_OBJECT

    QTemporaryDir folder;
    QString log_path() const { return folder.path() + QStringLiteral("/debug.log"); }

    void set_up(bool debug, bool terminal, bool file, bool encipher) {
        plugin_static_function::set_essentials();
        struct_GLOBAL_COMMON_VANTOR_AND_ARTIFACT_general_info general;
        general.debug_mode_status = debug;
        general.debug_print_on_terminal = terminal;
        general.debug_print_in_file = file;
        general.debug_encryption_status = encipher;
        general.debug_file_path = log_path();
        plugin_static_function::set_general_info(general);
    }

    QByteArray take_file() {
        QFile file(log_path());
        const QByteArray content = file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
        file.close();
        plugin_static_function::close_debug_file();
        QFile::remove(log_path());
        return content;
    }

private Q_SLOTS:
    void cleanup() { plugin_static_function::close_debug_file(); }

    void line_data() {
        QTest::addColumn<int>("engine");
        QTest::addColumn<QString>("function");
        QTest::addColumn<QString>("behind_time");
        const QString virtual_function = QStringLiteral("virtual void cortana::pub_extract_artifacts()");
        QTest::newRow("desk") << 0 << virtual_function
                              << "[VANTOR_DESK][Artifacts Extraction][cortana::pub_extract_artifacts]:-- m\n";
        QTest::newRow("scout, many arguments")
            << 1 << "static bool plugin_static_function::f(QString, QString, QString)"
            << "[VANTOR_SCOUT][Artifacts Extraction][plugin_static_function::f]:-- m\n";
        QTest::newRow("field, blanks around") << 2 << "  void a::b ( int )  "
                                              << "[VANTOR_FIELD][Artifacts Extraction][a::b]:-- m\n";
        QTest::newRow("after a reset")
            << -1 << "void f()"
            << "[ -----FAILED----- to find Engine Type ][-1][Artifacts Extraction][f]:-- m\n";
        QTest::newRow("unknown engine")
            << 3 << "f"
            << "[ -----FAILED----- to find Engine Type ][3][Artifacts Extraction][f]:-- m\n";
        QTest::newRow("no function") << 0 << "  "
                                     << "[VANTOR_DESK][Artifacts Extraction]"
                                        "[FUNCTION INFO IS EMPTY ---FAILED--- debug!!!]:-- m\n";
    }
    void line() {
        QFETCH(int, engine);
        QFETCH(QString, function);
        QFETCH(QString, behind_time);
        QLocale::setDefault(QLocale(QLocale::German));
        set_up(true, false, true, false);
        plugin_static_function::set_engine_type(engine);
        plugin_static_function::app_debug(QStringLiteral("m"), function);
        const QString written = QString::fromLocal8Bit(take_file());
        const int time_size = 22; // [2024-Mar-05T09-07-41]
        QCOMPARE(written.mid(time_size), behind_time);
        const QDateTime time =
            QLocale::c().toDateTime(written.left(time_size), QStringLiteral("[yyyy-MMM-ddThh-mm-ss]"));
        QVERIFY2(time.isValid(), qPrintable(written));
        QLocale::setDefault(QLocale::c());
    }

    void switches_data() {
        QTest::addColumn<bool>("debug");
        QTest::addColumn<bool>("terminal");
        QTest::addColumn<bool>("file");
        QTest::newRow("debug off") << false << true << true;
        QTest::newRow("both off") << true << false << false;
        QTest::newRow("terminal") << true << true << false;
        QTest::newRow("file") << true << false << true;
        QTest::newRow("both") << true << true << true;
    }
    void switches() {
        QFETCH(bool, debug);
        QFETCH(bool, terminal);
        QFETCH(bool, file);
        set_up(debug, terminal, file, false);
        plugin_static_function::set_engine_type(0);
        terminal_lines.clear();
        const QtMessageHandler before = qInstallMessageHandler(keep_terminal_line);
        plugin_static_function::app_debug(QStringLiteral("with \"quotes\""), QStringLiteral("void f()"));
        qInstallMessageHandler(before);
        QCOMPARE(terminal_lines.size(), debug && terminal ? 1 : 0);
        if (!terminal_lines.isEmpty()) {
            QVERIFY2(terminal_lines.first().startsWith(QLatin1String("0 default [")), "debug stream, unquoted");
            QVERIFY(terminal_lines.first().endsWith(QLatin1String("[f]:-- with \"quotes\"")));
        }
        QCOMPARE(take_file().isEmpty(), !(debug && file));
    }

    void enciphered_file() {
        set_up(true, false, true, true);
        plugin_static_function::set_engine_type(0);
        for (const char* message : {"first", "second\nline"}) {
            plugin_static_function::app_debug(QLatin1String(message), QStringLiteral("void f()"));
        }
        const QByteArray content = take_file();
        QVERIFY(!content.contains('\n'));
        const QStringList records = QString::fromLatin1(content).split(QLatin1String("<[{()}]>"));
        QCOMPARE(records.size(), 3); // the separator ends each record
        QVERIFY(encryptor_string().decryptToString(records.at(0)).endsWith(QLatin1String("[f]:-- first")));
        QVERIFY(encryptor_string().decryptToString(records.at(1)).endsWith(QLatin1String("[f]:-- second\nline")));
    }

    void file_is_reopened_and_appended() {
        set_up(true, false, true, false);
        plugin_static_function::app_debug(QStringLiteral("one"), QStringLiteral("f"));
        // A second general record with another path: the open file is closed, the new one used.
        struct_GLOBAL_COMMON_VANTOR_AND_ARTIFACT_general_info general;
        general.debug_mode_status = general.debug_print_in_file = true;
        general.debug_file_path = folder.path() + QStringLiteral("/other.log");
        plugin_static_function::set_general_info(general);
        plugin_static_function::app_debug(QStringLiteral("two"), QStringLiteral("f"));
        plugin_static_function::debug_file_path_QString = log_path();
        plugin_static_function::open_debug_file();
        plugin_static_function::app_debug(QStringLiteral("three"), QStringLiteral("f"));
        const QByteArray content = take_file();
        QCOMPARE(content.count('\n'), 2);
        QVERIFY(content.contains("one\n") && content.endsWith("three\n"));
    }

    void unwritable_path_is_silent() {
        set_up(true, false, true, false);
        plugin_static_function::debug_file_path_QString = folder.path() + QStringLiteral("/missing/debug.log");
        plugin_static_function::open_debug_file();
        QVERIFY(!plugin_static_function::debug_file_regular_QFile.isOpen());
        plugin_static_function::app_debug(QStringLiteral("nowhere"), QStringLiteral("f"));
        QVERIFY(!QFile::exists(folder.path() + QStringLiteral("/missing")));
        plugin_static_function::debug_file_path_QString.clear();
        plugin_static_function::open_debug_file();
        QVERIFY(!plugin_static_function::debug_file_regular_QFile.isOpen());
    }

    void reset_keeps_what_it_must() {
        set_up(true, true, true, true);
        struct_GLOBAL_COMMON_VANTOR_AND_ARTIFACT_source_info source;
        source.os_version_full = QStringLiteral("10.0.17763");
        source.system_account_QList.append({QStringLiteral("anna"), QString()});
        plugin_static_function::set_source_info(source);
        plugin_static_function::set_source_count(4);
        plugin_static_function::set_cancel_extraction(true);
        plugin_static_function::set_essentials();
        QCOMPARE(plugin_static_function::type_engine_int, -1);
        QCOMPARE(plugin_static_function::source_count_int, -1);
        QVERIFY(!plugin_static_function::bool_cancel_extraction);
        QVERIFY(!plugin_static_function::debug_mode_status_bool);
        QVERIFY(plugin_static_function::system_account_QList.isEmpty());
        QVERIFY(plugin_static_function::debug_file_path_QString.isEmpty());
        QVERIFY(plugin_static_function::debug_encryption_status_bool);
        QVERIFY(plugin_static_function::debug_file_regular_QFile.isOpen());
        QCOMPARE(plugin_static_function::source_os_version_full, source.os_version_full);
    }

    void cleared_general_record_keeps_encryption() {
        struct_GLOBAL_COMMON_VANTOR_AND_ARTIFACT_general_info general;
        general.general_flag_1 = general.debug_mode_status = general.debug_print_on_terminal = true;
        general.debug_print_in_file = general.debug_encryption_status = true;
        general.debug_file_path = QStringLiteral("x");
        plugin_static_function::clear_variables_vantor_and_artifact_common_general_info(general);
        QVERIFY(!general.general_flag_1 && !general.debug_mode_status && !general.debug_print_on_terminal);
        QVERIFY(!general.debug_print_in_file && general.debug_file_path.isEmpty());
        QVERIFY(general.debug_encryption_status);
    }

    void cleared_source_and_desktop_records() {
        const QString x = QStringLiteral("x");
        struct_GLOBAL_COMMON_VANTOR_AND_ARTIFACT_source_info source{x, x, x, x, x, {{x, x}}, x, x, {x}, x, x, x, x};
        plugin_static_function::clear_variables_vantor_and_artifact_common_source_info(source);
        for (const QString& text :
             {source.fs_extraction_source_path, source.source_path_2, source.os_scheme_display,
              source.os_scheme_internal, source.os_version_full, source.source_string_7, source.source_string_8,
              source.source_string_10, source.source_string_11, source.source_string_12, source.source_string_13}) {
            QCOMPARE(text, QString());
        }
        QVERIFY(source.system_account_QList.isEmpty() && source.source_string_list_9.isEmpty());
        struct_GLOBAL_COMMON_VANTOR_AND_ARTIFACT_desktop_info desktop;
        desktop.desktop_string_1 = desktop.desktop_string_2 = desktop.desktop_string_4 = desktop.desktop_string_5 = x;
        desktop.desktop_flag_3 = true;
        plugin_static_function::clear_variables_vantor_and_artifact_common_desktop_info(desktop);
        QCOMPARE(desktop.desktop_string_1 + desktop.desktop_string_2, QString());
        QCOMPARE(desktop.desktop_string_4 + desktop.desktop_string_5, QString());
        QVERIFY(!desktop.desktop_flag_3);
    }
};

QTEST_GUILESS_MAIN(test_debug_log)
#include "test_debug_log.moc"
