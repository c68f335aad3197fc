// SPDX-License-Identifier: MIT
// The static utility class shared by every plugin of the host: run-wide switches, debug log, SQL commands, source-file
// and path helpers, time conversions. The state is one copy in the process. Nothing throws and nothing reports failure
// to the host: a failure is a log line and a false, empty or zero result. One thread only.
#pragma once

#include "contract/host_records.h"

#include <QDateTime>
#include <QFile>
#include <QPair>
#include <QSqlDatabase>
#include <QString>
#include <QStringList>

// Times of a file in whole seconds since 1970-01-01 UTC; all 0 when the file cannot be read.
struct file_times {
    qint64 creation = 0;
    qint64 last_access = 0;
    qint64 last_modification = 0;
};

class plugin_static_function {
public:
    // --- run-wide state (plugin_state.cpp) ---------------------------------------------------------------------
    static int type_engine_int;  // 0 "VANTOR_DESK", 1 "VANTOR_SCOUT", 2 "VANTOR_FIELD", -1 after a reset
    static int source_count_int; // the host's number of the source, -1 after a reset
    static bool bool_cancel_extraction;
    static bool debug_mode_status_bool;
    static bool debug_print_on_terminal_bool;
    static bool debug_print_in_file_bool;
    static bool debug_encryption_status_bool;
    static QString debug_file_path_QString;
    static QFile debug_file_regular_QFile;
    static QString source_os_version_full;
    static QList<struct_GLOBAL_COMMON_VANTOR_AND_ARTIFACT_system_account> system_account_QList;

    // Resets the state to its values before a run; the encryption switch, the debug file and the operating-system
    // version keep theirs.
    static void set_essentials();
    static void set_engine_type(int type);
    static void set_source_count(int count);
    static void set_cancel_extraction(bool cancel);
    // Stores the debug switches and opens the debug file when debug mode and print-in-file are both on.
    static void set_general_info(struct_GLOBAL_COMMON_VANTOR_AND_ARTIFACT_general_info general_info);
    static void set_source_info(struct_GLOBAL_COMMON_VANTOR_AND_ARTIFACT_source_info source_info);
    static void set_desktop_info(struct_GLOBAL_COMMON_VANTOR_AND_ARTIFACT_desktop_info desktop_info);

    // Empty every text and list and set every flag false, the general record's encryption switch excepted.
    static void clear_variables_vantor_and_artifact_common_source_info(
        struct_GLOBAL_COMMON_VANTOR_AND_ARTIFACT_source_info& source_info);
    static void clear_variables_vantor_and_artifact_common_desktop_info(
        struct_GLOBAL_COMMON_VANTOR_AND_ARTIFACT_desktop_info& desktop_info);
    static void clear_variables_vantor_and_artifact_common_general_info(
        struct_GLOBAL_COMMON_VANTOR_AND_ARTIFACT_general_info& general_info);

    // --- debug log (debug_log.cpp) -----------------------------------------------------------------------------
    // Writes one line. function_info is the calling function's full signature text, as a literal.
    static void app_debug(QString message, QString function_info);
    static void open_debug_file();
    static void close_debug_file();
    // The text enciphered (Base64); "" for an empty text. caller is not used.
    static QString encrypt_string(QString text, QString caller);

    // --- SQL commands (db_commands.cpp) ------------------------------------------------------------------------
    // ..._by_dbpath opens and closes the file itself; ..._by_dbreference runs on an open database. caller is the
    // calling function's signature text; values are bound in order as text; column is a zero-based index.
    static bool execute_db_command_by_dbpath(QString command, QString db_path, QString caller);
    static bool execute_db_command_with_addbindvalue_by_dbpath(QString command, QStringList values, QString db_path,
                                                               QString caller);
    static bool execute_db_command_by_dbreference(QString command, QSqlDatabase& database, QString caller);
    static bool execute_db_command_with_addbindvalue_by_dbreference(QString command, QStringList values,
                                                                    QSqlDatabase& database, QString caller);
    static QStringList get_stringlist_from_db_by_dbreference(QString command, int column, QSqlDatabase& database,
                                                             QString caller);
    static QStringList get_stringlist_from_db_with_addbindvalues_by_dbreference(QString command, QStringList values,
                                                                                int column, QSqlDatabase& database,
                                                                                QString caller);
    static QStringList get_stringlist_from_db_by_dbpath(QString command, int column, QString db_path, QString caller);
    static QStringList get_stringlist_from_db_with_addbindvalues_by_dbpath(QString command, QStringList values,
                                                                           int column, QString db_path, QString caller);
    static bool check_value_existence_in_db_by_dbreference(QString command, int column, QString value,
                                                           QSqlDatabase database);
    static QStringList get_total_tables_list_by_dbpath(QString db_path, QString caller);

    // --- source-file and path helpers (path_helpers.cpp) -------------------------------------------------------
    // "Source" and the host's source number, for example "Source1".
    static QString get_source_count_name();
    // {system_user, domain_user} of the profile in which path lies; two empty texts when that cannot be told.
    static QPair<QString, QString> extract_user_name_from_sourcefile(QString path, QString root);
    // {display path, path as passed in (macOS home folders only, else empty)}.
    static QPair<QString, QString> get_final_artifact_source_file(QString source_file, QString cut_text,
                                                                  QString location_kind);
    static file_times get_posix_timestamp(QString relative_path, QString root);
    // Bytes in decimal: a file's size, a folder's sum of the files below it, "" for a missing path.
    static QString mining_size(QString path);
    // Removes the folder and all below it. Never acts on an empty path; a symbolic link is unlinked, never entered.
    static void remove_directory(QString path);
    // A file name that is free in dir: that of file_path, else with "1_", "2_", ... in front; "" after a cancel.
    static QString get_available_file(QString dir, QString file_path, QString caller);
    static bool is_file_exist_in_dir(QString dir, QString name, QString caller);

    // --- time conversions (time_conversion.cpp) ----------------------------------------------------------------
    // Texts in, decimal Unix seconds (UTC) out, unless said otherwise; what cannot be used gives "".
    static QString convert_apple_time_to_epoch(QString seconds_since_2001);
    static QString convert_google_time_to_epoch(QString microseconds_since_1601);
    static QString convert_human_readable_to_epoch_1(QString text);
    static QString convert_human_readable_to_epoch_2(QString text);
    static QString convert_human_readable_to_epoch_3(QString text);
    static int convert_timezone_to_seconds(QString hhmm);
    static QString convert_timestamp_to_human_readable_in_UTC(QString epoch_seconds);
    static QString convert_T_Z_time_to_epoch(QString text);
    static QString get_human_readable_time(QString duration_seconds);
    static QString get_filtered_date_value(QString iso_text);
    static QDateTime get_datetime_from_string_with_iso_date(QString iso_text);
};
