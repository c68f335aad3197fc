// SPDX-License-Identifier: MIT
// The debug log's lines, switches and file, plain and enciphered, and the shared state behind them.
#include "common/encryptor_string.h"
#include "common/plugin_static_function.h"
#include "tests/support/test_text.h"

#include <QLocale>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <QtTest>

using shared = plugin_static_function;

namespace {

QStringList terminal_lines;

void keep_terminal_line(QtMsgType type, const QMessageLogContext& context, const QString& text) {
    terminal_lines << "%1 %2 %3"_q.arg(int(type)).arg(QLatin1String(context.category), text);
}

} // namespace

class test_debug_log : public QObject {
    Q_OBJECT

    QTemporaryDir folder;
    QString log_path() const { return folder.path() + "/debug.log"_q; }

    void set_up(bool debug, bool terminal, bool file, bool encipher, const QString& name = "debug.log"_q) {
        shared::set_essentials();
        struct_GLOBAL_COMMON_VANTOR_AND_ARTIFACT_general_info general;
        general.debug_mode_status = debug;
        general.debug_print_on_terminal = terminal;
        general.debug_print_in_file = file;
        general.debug_encryption_status = encipher;
        general.debug_file_path = folder.filePath(name);
        shared::set_general_info(general);
    }

    QByteArray take_file() {
        QFile file(log_path());
        const QByteArray content = file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
        file.remove();
        shared::close_debug_file();
        return content;
    }

private Q_SLOTS:
    void cleanup() { shared::close_debug_file(); }

    void line_data() {
        QTest::addColumn<int>("engine");
        QTest::addColumn<QString>("function");
        QTest::addColumn<QString>("behind_time");
        const auto row = [](int engine, const char* function, const char* edition, const char* shown) {
            QTest::newRow(function) << engine << QString::fromLatin1(function)
                                    << "[%1][Artifacts Extraction][%2]:-- m\n"_q.arg(QLatin1String(edition),
                                                                                     QLatin1String(shown));
        };
        row(0, "virtual void cortana::pub_extract_artifacts()", "VANTOR_DESK", "cortana::pub_extract_artifacts");
        row(1, "static bool a::f(QString, QString)", "VANTOR_SCOUT", "a::f");
        row(2, "  void a::b ( int )  ", "VANTOR_FIELD", "a::b");
        row(-1, "void f()", " -----FAILED----- to find Engine Type ][-1", "f");
        row(3, "f", " -----FAILED----- to find Engine Type ][3", "f");
        row(0, "  ", "VANTOR_DESK", "FUNCTION INFO IS EMPTY ---FAILED--- debug!!!");
    }
    void line() {
        QFETCH(int, engine);
        QFETCH(QString, function);
        QLocale::setDefault(QLocale(QLocale::Japanese));
        set_up(true, false, true, false);
        shared::set_engine_type(engine);
        shared::app_debug("m"_q, function);
        QLocale::setDefault(QLocale::c());
        const QString written = QString::fromLocal8Bit(take_file());
        const int time_size = 22; // [2024-Mar-05T09-07-41]
        QTEST(written.mid(time_size), "behind_time");
        const QDateTime time = QLocale::c().toDateTime(written.left(time_size), "[yyyy-MMM-ddThh-mm-ss]"_q);
        QVERIFY2(time.isValid(), qPrintable(written));
    }

    void switches() {
        for (int on = 0; on < 8; ++on) {
            const bool debug = (on & 1) != 0, terminal = (on & 2) != 0, file = (on & 4) != 0;
            set_up(debug, terminal, file, false);
            shared::set_engine_type(0);
            terminal_lines.clear();
            const QtMessageHandler before = qInstallMessageHandler(keep_terminal_line);
            shared::app_debug("with \"quotes\""_q, "void f()"_q);
            qInstallMessageHandler(before);
            QCOMPARE(terminal_lines.size(), debug && terminal ? 1 : 0);
            for (const QString& line : qAsConst(terminal_lines)) {
                QVERIFY2(line.startsWith("0 default ["_q), "debug stream, unquoted");
                QVERIFY(line.endsWith("[f]:-- with \"quotes\""_q));
            }
            QCOMPARE(take_file().isEmpty(), !(debug && file));
        }
    }

    void enciphered_file() {
        set_up(true, false, true, true);
        for (const char* message : {"first", "second\nline"}) {
            shared::app_debug(QLatin1String(message), "void f()"_q);
        }
        QStringList records = QString::fromLatin1(take_file()).split("<[{()}]>"_q);
        QCOMPARE(records.takeLast(), QString()); // the separator ends each record
        for (QString& record : records) {
            record = encryptor_string().decryptToString(record).section("[f]:-- "_q, 1);
        }
        QCOMPARE(records, QStringList({"first"_q, "second\nline"_q}));
    }

    void file_is_reopened_and_appended() {
        set_up(true, false, true, false);
        shared::app_debug("one"_q, "f"_q);
        // A second general record with another path: the open file is closed, the new one used.
        set_up(true, false, true, false, "other.log"_q);
        shared::app_debug("two"_q, "f"_q);
        set_up(true, false, true, false);
        shared::app_debug("three"_q, "f"_q);
        const QByteArray content = take_file();
        QCOMPARE(content.count('\n'), 2);
        QVERIFY(content.contains("one\n") && content.endsWith("three\n"));
    }

    void unusable_paths_are_silent() {
        set_up(true, false, true, false, "missing/debug.log"_q);
        QVERIFY(!shared::debug_file_regular_QFile.isOpen());
        shared::app_debug("nowhere"_q, "f"_q);
        QVERIFY(!QFile::exists(folder.path() + "/missing"_q));
        set_up(true, false, true, false);
        shared::debug_file_path_QString.clear();
        shared::open_debug_file(); // the file that was open so far is not written on
        QVERIFY(!shared::debug_file_regular_QFile.isOpen());
    }

    void reset_keeps_what_it_must() {
        set_up(true, true, true, true);
        struct_GLOBAL_COMMON_VANTOR_AND_ARTIFACT_source_info source;
        source.os_version_full = "10.0.17763"_q;
        source.system_account_QList.append({"anna"_q, QString()});
        shared::set_source_info(source);
        shared::set_source_count(4);
        shared::set_cancel_extraction(true);
        shared::set_essentials();
        QCOMPARE(shared::type_engine_int, -1);
        QCOMPARE(shared::source_count_int, -1);
        QVERIFY(!shared::bool_cancel_extraction);
        QVERIFY(!shared::debug_mode_status_bool);
        QVERIFY(shared::system_account_QList.isEmpty());
        QVERIFY(shared::debug_file_path_QString.isEmpty());
        QVERIFY(shared::debug_encryption_status_bool);
        QVERIFY(shared::debug_file_regular_QFile.isOpen());
        QCOMPARE(shared::source_os_version_full, source.os_version_full);
    }
};

QTEST_GUILESS_MAIN(test_debug_log)
#include "test_debug_log.moc"
