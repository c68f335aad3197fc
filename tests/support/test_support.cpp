// SPDX-License-Identifier: MIT
// Implementation of the shared test fixtures.
#include "tests/support/test_support.h"

#include "common/plugin_static_function.h"
#include "result_db/schema.h"
#include "tests/support/file_content.h"

#include <QDir>
#include <QRegularExpression>
#include <QSqlError>
#include <QSqlQuery>
#include <QSqlRecord>
#include <QtTest>

namespace {

// Runs one statement on a connection of its own; the rows that it gives, as texts.
QVector<QStringList> run_statement(const QString& path, const QString& statement) {
    QVector<QStringList> rows;
    {
        QSqlDatabase database = QSqlDatabase::addDatabase("QSQLITE"_q, "test_database"_q);
        database.setDatabaseName(path);
        database.open();
        QSqlQuery("pragma synchronous = off"_q, database); // nothing of a test outlives the machine
        QSqlQuery query(statement, database);
        if (!query.isActive()) {
            qFatal("%s: %s: %s", qPrintable(path), qPrintable(statement), qPrintable(query.lastError().text()));
        }
        while (query.next()) {
            rows.append(QStringList());
            for (int i = 0; i < query.record().count(); ++i) {
                rows.last() << query.value(i).toString();
            }
        }
    }
    QSqlDatabase::removeDatabase("test_database"_q);
    return rows;
}

// The file is made once: ten statements a case would cost more than what most cases test.
void write_empty_tables(const QString& path) {
    static const QByteArray content = [&] {
        for (const result_table& table : result_tables()) {
            run_statement(path, QLatin1String(table.create_statement));
        }
        return whole_file(path);
    }();
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly) || file.write(content) != content.size()) {
        qFatal("cannot write %s", qPrintable(path));
    }
}

std::function<void()> action_at_failure;

void watch_for_failures(QtMsgType, const QMessageLogContext&, const QString& message) {
    if (message.contains(QLatin1String("FAILED")) || message.contains(QLatin1String("Unable to open"))) {
        action_at_failure();
    }
}

} // namespace

test_case_folder::test_case_folder(const QList<QPair<QString, QString>>& accounts) {
    source.fs_extraction_source_path = root();
    source.os_scheme_display = "Windows"_q;
    source.os_scheme_internal = "winOS"_q;
    for (const auto& account : accounts) {
        source.system_account_QList.append({account.first, account.second});
    }
    QDir().mkpath(root());
    QDir().mkpath(result_dir());
    write_empty_tables(database_path());
    plugin_static_function::set_essentials();
    plugin_static_function::set_engine_type(0);
    plugin_static_function::set_source_count(1);
    plugin_static_function::set_source_info(source);
    struct_GLOBAL_COMMON_VANTOR_AND_ARTIFACT_general_info general;
    general.debug_mode_status = true;
    general.debug_print_in_file = true;
    general.debug_file_path = folder.path() + "/debug.log"_q;
    plugin_static_function::set_general_info(general);
}

test_case_folder::~test_case_folder() {
    plugin_static_function::close_debug_file();
}

QString test_case_folder::package_folder(const QString& user) const {
    return root() + "Users/"_q + user + "/AppData/Local/Packages/Microsoft.Windows.Cortana_cw5n1h2txyewy/"_q;
}

void test_case_folder::write_file(const QString& path_below_root, const QByteArray& content) const {
    const QString path = root() + path_below_root;
    QDir().mkpath(QFileInfo(path).path());
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly) || file.write(content) != content.size()) {
        qFatal("cannot write %s", qPrintable(path));
    }
}

std::unique_ptr<cortana_winos> test_case_folder::make_front(const QStringList& tables) const {
    auto front = std::make_unique<cortana_winos>();
    front->winos_set_engine_type(0);
    front->winos_set_plugin_name("Cortana"_q);
    front->winos_set_source_count(1);
    front->winos_set_source_info(source);
    front->winos_set_essential_for_vantor_desk_extraction(tables);
    front->winos_set_destination_location(result_dir(), result_dir() + "tmp/"_q, database_path());
    return front;
}

QStringList test_case_folder::take_log() {
    const QByteArray log = whole_file(folder.path() + "/debug.log"_q);
    QString text = QString::fromLocal8Bit(log.mid(log_position));
    log_position = log.size();
    static const QRegularExpression head("^\\[\\d{4}-[A-Z][a-z]{2}-\\d\\dT\\d\\d-\\d\\d-\\d\\d\\]\\[VANTOR_DESK\\]"
                                         "\\[Artifacts Extraction\\]\\[([^\\]]*)\\]"_q,
                                         QRegularExpression::MultilineOption);
    text.replace(head, "\\1"_q);
    text.replace(root(), "ROOT/"_q).replace(result_dir(), "RESULT/"_q);
    QStringList lines = text.split(QLatin1Char('\n'));
    lines.removeLast(); // what follows the last line break
    return lines;
}

void test_case_folder::execute(const QString& statement) const {
    run_statement(database_path(), statement);
}

QStringList test_case_folder::dump(const QString& table, const QStringList& columns) const {
    return dump_table(database_path(), table, columns);
}

QStringList dump_table(const QString& database_path, const QString& table, const QStringList& columns) {
    if (!QFile::exists(database_path)) {
        qFatal("no database %s", qPrintable(database_path));
    }
    QStringList names = columns;
    if (columns.isEmpty()) {
        for (const auto& row : run_statement(database_path, "select name from pragma_table_info('%1')"_q.arg(table))) {
            names << row.first();
        }
    }
    QStringList selected;
    for (const QString& name : qAsConst(names)) {
        selected << "typeof(\"%1\"), \"%1\""_q.arg(name);
    }
    QStringList rows;
    const QString statement = "select %1 from %2 order by rowid"_q.arg(selected.join(QLatin1Char(',')), table);
    for (const QStringList& row : run_statement(database_path, statement)) {
        QStringList values;
        for (int i = 0; i < names.size(); ++i) {
            values << names[i] + "=%1:%2"_q.arg(row[2 * i], row[2 * i + 1]);
        }
        rows << values.join(" | "_q);
    }
    return rows;
}

at_failure_line::at_failure_line(std::function<void()> action) {
    action_at_failure = std::move(action);
    plugin_static_function::debug_print_on_terminal_bool = true;
    before = qInstallMessageHandler(watch_for_failures);
}

at_failure_line::~at_failure_line() {
    qInstallMessageHandler(before);
    plugin_static_function::debug_print_on_terminal_bool = false;
}

full_disk::full_disk(rlim_t largest_file) {
    struct sigaction ignore = {};
    ignore.sa_handler = SIG_IGN; // else a write beyond the limit would end the program
    ::sigaction(SIGXFSZ, &ignore, &action_before);
    ::getrlimit(RLIMIT_FSIZE, &limit_before);
    const struct rlimit limit = {largest_file, limit_before.rlim_max};
    ::setrlimit(RLIMIT_FSIZE, &limit);
}

full_disk::~full_disk() {
    ::setrlimit(RLIMIT_FSIZE, &limit_before);
    ::sigaction(SIGXFSZ, &action_before, nullptr);
}

QStringList golden_lines(const QString& path) {
    QStringList lines = QString::fromUtf8(whole_file(path)).split(QLatin1Char('\n'));
    lines.removeLast(); // what follows the last line break
    if (lines.isEmpty()) {
        QTest::qFail(qPrintable("no golden file "_q + path), __FILE__, __LINE__);
    }
    return lines;
}

bool matches_golden(const QStringList& lines, const QString& path) {
    if (qEnvironmentVariableIsSet("UPDATE_GOLDEN")) {
        QFile file(path);
        const QByteArray content = lines.join(QLatin1Char('\n')).toUtf8() + '\n';
        const bool written = file.open(QIODevice::WriteOnly) && file.write(content) == content.size();
        qWarning("golden file %s %s", qPrintable(path), written ? "written" : "NOT written");
        return false;
    }
    const QStringList golden = golden_lines(path);
    if (lines == golden) {
        return true;
    }
    int same = 0;
    while (same < lines.size() && lines[same] == golden.value(same)) {
        ++same;
    }
    const QString none = "(no line)"_q;
    qWarning("line %d\n  is     %s\n  golden %s", same + 1, qPrintable(lines.value(same, none)),
             qPrintable(golden.value(same, none)));
    return false;
}
