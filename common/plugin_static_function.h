// SPDX-License-Identifier: MIT
// The static utility class shared by every plugin of the host: run-wide switches, debug log, SQL commands, source-file
// and path helpers, time conversions. The state is one copy in the process. Nothing throws and nothing reports failure
// to the host: a failure is a log line and a false, empty or zero result. One thread only. Paths are texts in Qt's
// encoding of file names; what is given by value is not kept unless said.
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
    // Writes one line to the terminal, the open debug file or both, as the switches say; nothing without debug mode.
    // function_info: the calling function's full signature text; an empty one is told as a failure in its place. The
    // file holds the local 8-bit encoding, enciphered or not, and is flushed after each line.
    static void app_debug(QString message, QString function_info);
    // Opens debug_file_path_QString for appending, closing one that is open; nothing unless debug mode and
    // print-in-file are on. A file that cannot be opened gets no lines, and nobody is told.
    static void open_debug_file();
    static void close_debug_file(); // nothing when none is open
    // The text enciphered (Base64); "" for an empty text. caller is not used.
    static QString encrypt_string(QString text, QString caller);

    // --- SQL commands (db_commands.cpp) ------------------------------------------------------------------------
    // ..._by_dbpath opens and closes the file itself (SQLite makes a missing one); ..._by_dbreference runs on the
    // caller's open database, within its transaction, and leaves it open. caller is the calling function's signature
    // text, told in the log and part of the connection's name; values are bound in order as text, a null one as NULL;
    // column is a zero-based index, and one that the result has not gives empty texts. A list holds one text a row, ""
    // for NULL; an empty one is also what a failure gives. Commands are run as they are: none may come from evidence.
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
    // {system_user, domain_user} of the profile in which path lies: those of the first account whose system user the
    // profile's folder is named after, null texts included, else the folder's name and "". Two empty texts, never null
    // ones, without accounts and for a path that has no folder behind "Users". root is cut off by its length, unlooked
    // at.
    static QPair<QString, QString> extract_user_name_from_sourcefile(QString path, QString root);
    // {display path, path as passed in (macOS home folders only, else "")}. The display path begins with "/" unless it
    // is blank; for macOS home folders it is what follows the first cut_text.
    static QPair<QString, QString> get_final_artifact_source_file(QString source_file, QString cut_text,
                                                                  QString location_kind);
    // Times of the file at root + relative_path (both trimmed); zeros when either is blank or nothing is there. The
    // birth time comes from the file system or, where that has none, from ntfs-3g's attribute.
    static file_times get_posix_timestamp(QString relative_path, QString root);
    // Bytes in decimal: a file's size, a folder's sum of the files below it (links not counted), "" for a missing path.
    // After a cancel a folder's is what its own entry says.
    static QString mining_size(QString path);
    // Removes the folder and all below it. Never acts on an empty path; a symbolic link is unlinked, never entered.
    static void remove_directory(QString path);
    // A file name that is free in dir: that of file_path, else with "1_", "2_", ... in front; "" after a cancel. Makes
    // dir with its parents; nothing keeps the name free. caller is not used here or below.
    static QString get_available_file(QString dir, QString file_path, QString caller);
    // True when an entry directly in dir, hidden ones included, is called name, white space around both left out. False
    // for a missing dir and after a cancel.
    static bool is_file_exist_in_dir(QString dir, QString name, QString caller);

    // --- time conversions (time_conversion.cpp) ----------------------------------------------------------------
    // Texts in, decimal Unix seconds (UTC) out, unless said otherwise; what cannot be used gives "", never a null text.
    // Month names and AM/PM are English under every locale.
    static QString convert_apple_time_to_epoch(QString seconds_since_2001); // a fraction is cut off; 32 bits
    static QString
    convert_google_time_to_epoch(QString microseconds_since_1601);  // ten characters are passed on as they are
    static QString convert_human_readable_to_epoch_1(QString text); // "MMM d, yyyy, h:mm:ss AM UTC"; local without UTC
    static QString convert_human_readable_to_epoch_2(QString text); // "yyyy-MM-dd hh:mm:ss.zzz +hhmm"
    static QString convert_human_readable_to_epoch_3(QString text); // "ddd, dd MMM yyyy hh:mm:ss zone", read as UTC
    static int convert_timezone_to_seconds(QString hhmm);           // without a sign; what is no number counts 0
    static QString convert_timestamp_to_human_readable_in_UTC(QString epoch_seconds); // to "dd-MMM-yyyy hh:mm:ss"
    static QString convert_T_Z_time_to_epoch(QString text); // date, "T" or blank, time; read in the machine's zone
    static QString get_human_readable_time(QString duration_seconds);          // to "mm:ss Min" or "hh:mm:ss Hrs"
    static QString get_filtered_date_value(QString iso_text);                  // the wall time is taken as UTC
    static QDateTime get_datetime_from_string_with_iso_date(QString iso_text); // an invalid one when it does not parse
};
