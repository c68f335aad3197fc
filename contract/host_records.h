// SPDX-License-Identifier: MIT
// The four records in which the host describes a case. They are passed by value; the field order is an interface
// contract with the host and with every other plugin, so a field that this plugin ignores keeps its place. Texts that
// go into rows go as they are: a null one as NULL, an empty one as ''.
#pragma once

#include <QList>
#include <QString>
#include <QStringList>

// One user account of the source. Both names are candidates for a folder name under "Users/".
struct struct_GLOBAL_COMMON_VANTOR_AND_ARTIFACT_system_account {
    QString system_user; // the account's user name, also the name of its profile folder
    QString domain_user; // the account's domain user name
};

// The source being examined. A relative root is taken from the working directory that the process has when the record
// is set; a later change of that directory does not matter.
struct struct_GLOBAL_COMMON_VANTOR_AND_ARTIFACT_source_info {
    QString fs_extraction_source_path; // folder that stands for "C:/": ends in "/"
    QString source_path_2;             // kept, written nowhere
    QString os_scheme_display;         // operating system as shown to the user, written into every row
    QString os_scheme_internal;        // "macOS", "iOS_UID" or "winOS": selects the front
    QString os_version_full;           // full version of the source's operating system
    QList<struct_GLOBAL_COMMON_VANTOR_AND_ARTIFACT_system_account> system_account_QList;
    QString source_string_7; // fields 7 to 13 are not used by this plugin
    QString source_string_8;
    QStringList source_string_list_9;
    QString source_string_10;
    QString source_string_11;
    QString source_string_12;
    QString source_string_13;
};

// The debug switches.
struct struct_GLOBAL_COMMON_VANTOR_AND_ARTIFACT_general_info {
    bool general_flag_1 = false; // not used by this plugin
    bool debug_mode_status = false;
    bool debug_print_on_terminal = false;
    bool debug_print_in_file = false;
    bool debug_encryption_status = false; // lines written to the debug file are enciphered
    QString debug_file_path;
};

// The examiner's machine. Received and ignored.
struct struct_GLOBAL_COMMON_VANTOR_AND_ARTIFACT_desktop_info {
    QString desktop_string_1;
    QString desktop_string_2;
    bool desktop_flag_3 = false;
    QString desktop_string_4;
    QString desktop_string_5;
};

using system_account = struct_GLOBAL_COMMON_VANTOR_AND_ARTIFACT_system_account;
