// SPDX-License-Identifier: MIT
// What a host includes to drive the plugin; it needs nothing else of this project and links nothing of it.
//
//   void* library = dlopen("libcortana.so", RTLD_NOW | RTLD_LOCAL);
//   auto create = reinterpret_cast<create_object_function>(dlsym(library, create_object_symbol));
//   auto* plugin = static_cast<host_interface*>(create());          // owned by the host, deleted by the host
//   QObject::connect(plugin, CORTANA_RECORDS_SIGNAL, receiver, SLOT(...));  // both signals are connected by text
//
// A QApplication must exist. All calls come from one thread. No operation throws or reports failure: failures are
// lines of the debug log. Calling order of a run:
//
//   pub_set_essentials                          first: resets the shared state and the cancel flags
//   pub_set_engine_type                         after it, or log lines have no engine and nothing is extracted
//   pub_set_general_info, pub_set_desktop_info, pub_set_source_info, pub_set_source_count,
//   pub_set_essential_for_vantor_desk_extraction, pub_set_result_directory
//   pub_create_db_tables, then pub_set_clear_db(true) if rows of earlier runs are to go
//   pub_find_source_file
//   pub_extract_artifacts
//   pub_remove_temporary_asthetics              last: removes the working folder and closes the debug file
//
// pub_cancel_extraction may come at any time during pub_extract_artifacts. It stores plain flags and does nothing else,
// so it may be called from a slot of the signals below, or from a signal handler that runs on the calling thread where
// the platform keeps such stores visible to the interrupted code.
#pragma once

#include "contract/host_records.h"

#include <QFrame>
#include <QString>
#include <QStringList>

class ios_uid_backup_parser; // the host's own; stored and never used

// The 18 operations in the order of their slots, directly after the virtual functions of QFrame. The host calls
// through the virtual table, so neither order nor number may change.
class host_interface : public QFrame {
public:
    // 0 "VANTOR_DESK", 1 "VANTOR_SCOUT", 2 "VANTOR_FIELD"; with any other value nothing is cleared or extracted.
    virtual void pub_set_engine_type(int type) = 0;
    // The artifact's name, "Cortana".
    virtual QString pub_get_artifact_name() = 0;
    // Begins a run: counts and cancel flags are cleared, the engine type, the source number and the accounts
    // forgotten, the log switched off. Paths, tables and what was found stay.
    virtual void pub_set_essentials() = 0;
    // The host's number of the source; "Source" and this number go into every row.
    virtual void pub_set_source_count(int count) = 0;
    // Stays the host's and is never looked at; null is fine.
    virtual void pub_set_ios_uid_backup_pointer(ios_uid_backup_parser* parser) = 0;
    virtual void
    pub_set_desktop_info(struct_GLOBAL_COMMON_VANTOR_AND_ARTIFACT_desktop_info desktop_info) = 0; // ignored
    // Sets the debug switches and opens the debug file, for appending, if they ask for it.
    virtual void pub_set_general_info(struct_GLOBAL_COMMON_VANTOR_AND_ARTIFACT_general_info general_info) = 0;
    // The source, read only. A missing root gives no rows; accounts without a profile folder are passed over.
    virtual void pub_set_source_info(struct_GLOBAL_COMMON_VANTOR_AND_ARTIFACT_source_info source_info) = 0;
    // The names of the result tables to fill and to clear; names of no table fill nothing. The second list is ignored.
    virtual void pub_set_essential_for_vantor_desk_extraction(QStringList tables, QStringList ignored) = 0;
    // The folder below which the plugin writes: Artifacts_Result/Cortana/Cortana.sqlite and a folder tmp/. Both folders
    // are made at once; it may end in "/" or not.
    virtual void pub_set_result_directory(QString directory) = 0;
    // Makes the database and its ten tables; what is there stays, rows included.
    virtual void pub_create_db_tables() = 0;
    // true: empties the selected tables. false: nothing.
    virtual void pub_set_clear_db(bool clear) = 0;
    virtual void pub_cancel_extraction() = 0;
    // Looks for the source's files anew; what is not found here is never read.
    virtual void pub_find_source_file() = 0;
    virtual void pub_set_extended_attributes_list(QStringList attributes) = 0; // does nothing
    // Adds the rows of the selected tables, emitting the signals below. A second call adds them again.
    virtual void pub_extract_artifacts() = 0;
    virtual void pub_generate_chat_html_pages() = 0;   // does nothing
    virtual void pub_remove_temporary_asthetics() = 0; // the database stays

protected:
    using QFrame::QFrame;
};

// The only symbol that the library exports: void* create_object(), in C linkage.
constexpr const char* create_object_symbol = "create_object";
using create_object_function = void* (*)();

// Records written so far: at most about once a second during a step, once after each step, at the start and the end.
#define CORTANA_RECORDS_SIGNAL SIGNAL(signal_extracted_records_of_plugin_overall(qint64))
// Result tables done so far, after each step.
#define CORTANA_TABLES_SIGNAL SIGNAL(signal_tab_processed_of_plugin_overall(int))
