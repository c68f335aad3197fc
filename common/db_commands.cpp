// SPDX-License-Identifier: MIT
// SQL commands on any SQLite file. The failure texts differ in their blanks from operation to operation; each stands
// here whole, exactly as it is logged.
#include "common/named_connection.h"
#include "common/plugin_static_function.h"

#include <QSqlError>
#include <QSqlQuery>
#include <QVariant>

#include <optional>

namespace {

using optional_values = std::optional<QStringList>;

bool run(QSqlQuery& query, const QString& command, const optional_values& values) {
    if (!query.prepare(command)) {
        return false;
    }
    if (values) {
        for (const QString& value : *values) {
            query.addBindValue(value);
        }
    }
    return query.exec();
}

// For lists: forward only, so that the driver keeps one row at a time and not all of them.
bool run_list(QSqlQuery& query, const QString& command, const optional_values& values) {
    query.setForwardOnly(true);
    return run(query, command, values);
}

// Replaces any connection of that name; the result may be closed (the file did not open).
QSqlDatabase open_database(const QString& path, const QString& connection_name) {
    QSqlDatabase database = replace_connection(connection_name, path);
    database.open();
    return database;
}

QStringList column_of_all_rows(QSqlQuery& query, int column) {
    QStringList values;
    while (query.next()) {
        values.append(query.value(column).toString());
    }
    return values;
}

// The first texts of a group of failure lines; the values follow them directly.
struct failure_texts {
    const char* query;
    const char* caller;
    const char* command;
    const char* error;
};

constexpr failure_texts by_path_failed = {" query  --------FAILED------ db file - ", "CALLER FUNCTION -  ",
                                          " command -  ", " error -  "};
constexpr failure_texts by_reference_failed = {" query  --------FAILED------ db file - ", " CALLER FUNCTION -  -  ",
                                               " command -  ", " error -  "};
constexpr failure_texts list_by_reference_failed = {" query  --------FAILED------db file - ", " CALLER FUNCTION -  -  ",
                                                    " command -  ", " error -  "};
constexpr failure_texts list_by_path_failed = {"query  --------FAILED------db file - ", "CALLER FUNCTION -  ",
                                               "command -  ", "error -  "};

// Who logs, on whose behalf.
struct call {
    QString function;
    QString caller;

    void log(const char* text, const QString& value = QString()) const {
        plugin_static_function::app_debug(QLatin1String(text) + value, function);
    }
    void log_failure(const failure_texts& texts, const QString& file, const QString& command,
                     const QString& error) const {
        log(texts.query, file);
        log(texts.caller, caller);
        log(texts.command, command);
        log(texts.error, error);
    }
    void log_opening_failure(const QString& path, const QSqlDatabase& database) const {
        log(" Destination Db opening --------FAILED------ ", path);
        log("CALLER FUNCTION -  ", caller);
        log(" error -  ", database.lastError().text());
    }
};

bool execute_by_path(const call& who, const QString& command, const optional_values& values, const QString& path) {
    QSqlDatabase database = open_database(path, who.function + who.caller);
    if (!database.isOpen()) {
        who.log_opening_failure(path, database);
        return false;
    }
    bool done = false;
    {
        QSqlQuery query(database);
        done = run(query, command, values);
        if (!done) {
            who.log_failure(by_path_failed, path, command, query.lastError().text());
        }
    }
    database.close();
    return done;
}

bool execute_by_reference(const call& who, const QString& command, const optional_values& values,
                          QSqlDatabase& database) {
    QSqlQuery query(database);
    if (run(query, command, values)) {
        return true;
    }
    who.log_failure(by_reference_failed, database.databaseName(), command, query.lastError().text());
    return false;
}

QStringList list_by_reference(const call& who, const QString& command, const optional_values& values, int column,
                              QSqlDatabase& database) {
    who.log(" Start ");
    QSqlQuery query(database);
    if (!run_list(query, command, values)) {
        who.log_failure(list_by_reference_failed, database.databaseName(), command, query.lastError().text());
        return {};
    }
    const QStringList list = column_of_all_rows(query, column);
    who.log(" end ");
    return list;
}

QStringList list_by_path(const call& who, const QString& command, const optional_values& values, int column,
                         const QString& path, const char* end_text) {
    who.log(" Start ");
    const QString name = QString::number(QDateTime::currentMSecsSinceEpoch());
    QStringList list;
    {
        QSqlDatabase database = open_database(path, name);
        if (!database.isOpen()) {
            who.log("Destination Db opening --------FAILED------ ", path);
        } else {
            QSqlQuery query(database);
            if (run_list(query, command, values)) {
                list = column_of_all_rows(query, column);
                who.log(end_text);
            } else {
                who.log_failure(list_by_path_failed, path, command, query.lastError().text());
            }
        }
        database.close();
    }
    QSqlDatabase::removeDatabase(name);
    return list;
}

} // namespace

bool plugin_static_function::execute_db_command_by_dbpath(QString command, QString db_path, QString caller) {
    return execute_by_path({QStringLiteral("static bool plugin_static_function::execute_db_command_by_dbpath"
                                           "(QString, QString, QString)"),
                            caller},
                           command, std::nullopt, db_path);
}

bool plugin_static_function::execute_db_command_with_addbindvalue_by_dbpath(QString command, QStringList values,
                                                                            QString db_path, QString caller) {
    return execute_by_path(
        {QStringLiteral("static bool plugin_static_function::execute_db_command_with_addbindvalue_by_dbpath"
                        "(QString, QStringList, QString, QString)"),
         caller},
        command, values, db_path);
}

bool plugin_static_function::execute_db_command_by_dbreference(QString command, QSqlDatabase& database,
                                                               QString caller) {
    return execute_by_reference({QStringLiteral("static bool plugin_static_function::execute_db_command_by_dbreference"
                                                "(QString, QSqlDatabase&, QString)"),
                                 caller},
                                command, std::nullopt, database);
}

bool plugin_static_function::execute_db_command_with_addbindvalue_by_dbreference(QString command, QStringList values,
                                                                                 QSqlDatabase& database,
                                                                                 QString caller) {
    return execute_by_reference(
        {QStringLiteral("static bool plugin_static_function::execute_db_command_with_addbindvalue_by_dbreference"
                        "(QString, QStringList, QSqlDatabase&, QString)"),
         caller},
        command, values, database);
}

QStringList plugin_static_function::get_stringlist_from_db_by_dbreference(QString command, int column,
                                                                          QSqlDatabase& database, QString caller) {
    return list_by_reference(
        {QStringLiteral("static QStringList plugin_static_function::get_stringlist_from_db_by_dbreference"
                        "(QString, int, QSqlDatabase&, QString)"),
         caller},
        command, std::nullopt, column, database);
}

QStringList plugin_static_function::get_stringlist_from_db_with_addbindvalues_by_dbreference(
    QString command, QStringList values, int column, QSqlDatabase& database, QString caller) {
    return list_by_reference({QStringLiteral("static QStringList plugin_static_function::"
                                             "get_stringlist_from_db_with_addbindvalues_by_dbreference"
                                             "(QString, QStringList, int, QSqlDatabase&, QString)"),
                              caller},
                             command, values, column, database);
}

QStringList plugin_static_function::get_stringlist_from_db_by_dbpath(QString command, int column, QString db_path,
                                                                     QString caller) {
    return list_by_path({QStringLiteral("static QStringList plugin_static_function::get_stringlist_from_db_by_dbpath"
                                        "(QString, int, QString, QString)"),
                         caller},
                        command, std::nullopt, column, db_path, " end ");
}

QStringList plugin_static_function::get_stringlist_from_db_with_addbindvalues_by_dbpath(QString command,
                                                                                        QStringList values, int column,
                                                                                        QString db_path,
                                                                                        QString caller) {
    return list_by_path({QStringLiteral("static QStringList plugin_static_function::"
                                        "get_stringlist_from_db_with_addbindvalues_by_dbpath"
                                        "(QString, QStringList, int, QString, QString)"),
                         caller},
                        command, values, column, db_path, " End ");
}

bool plugin_static_function::check_value_existence_in_db_by_dbreference(QString command, int column, QString value,
                                                                        QSqlDatabase database) {
    const call who{QStringLiteral("static bool plugin_static_function::check_value_existence_in_db_by_dbreference"
                                  "(QString, int, QString, QSqlDatabase)"),
                   QString()};
    QSqlQuery query(database);
    if (!run_list(query, command, std::nullopt)) {
        // Deliberate: these three say by_dbpath; readers of the log search for them as they are.
        who.log("[check_value_existence_in_db_by_dbpath] query --------FAILED------", database.connectionName());
        who.log("[check_value_existence_in_db_by_dbpath]command", command);
        who.log("[check_value_existence_in_db_by_dbpath] error", query.lastError().text());
        return false;
    }
    while (query.next()) {
        if (query.value(column).toString() == value) {
            return true;
        }
    }
    return false;
}

QStringList plugin_static_function::get_total_tables_list_by_dbpath(QString db_path, QString caller) {
    const call who{
        QStringLiteral("static QStringList plugin_static_function::get_total_tables_list_by_dbpath(QString, QString)"),
        caller};
    QSqlDatabase database = open_database(db_path, who.function + who.caller);
    if (!database.isOpen()) {
        who.log_opening_failure(db_path, database);
        return {};
    }
    const QStringList tables = database.tables(QSql::Tables);
    database.close();
    return tables;
}
