// SPDX-License-Identifier: MIT
// What tests share: a temporary case (source root, result folder with the schema, debug log), typed dumps of result
// tables, golden files.
#pragma once

#include "plugin/cortana_winos.h"
#include "tests/support/test_text.h"

#include <QByteArray>
#include <QStringList>
#include <QTemporaryDir>

#include <csignal>
#include <functional>
#include <sys/resource.h>

// A case in a temporary folder: root() is an empty source root, the result database holds the ten tables, the debug
// log goes to a file. Making one resets the process-wide run state (engine type 0, source number 1).
class test_case_folder {
public:
    // accounts: {system_user, domain_user} of each profile.
    explicit test_case_folder(const QList<QPair<QString, QString>>& accounts = {{"anna"_q, "CORP\\anna"_q}});
    ~test_case_folder();

    QString root() const { return folder.path() + "/source/"_q; }
    QString result_dir() const { return folder.path() + "/result/"_q; }
    QString database_path() const { return result_dir() + "Cortana.sqlite"_q; }
    // Folder of Cortana's package in the profile, ending in "/".
    QString package_folder(const QString& user) const;

    // Writes a file below root(), with the folders on its way.
    void write_file(const QString& path_below_root, const QByteArray& content) const;

    // A front set up as the plugin object would: source, accounts, selected tables, result paths. It has not looked
    // for sources yet.
    std::unique_ptr<cortana_winos> make_front(const QStringList& tables = {}) const;

    // The debug log's messages since the last call, each "function:-- message" without time and engine; root() is
    // written as "ROOT/", result_dir() as "RESULT/".
    QStringList take_log();

    // Runs one SQL statement on the result database.
    void execute(const QString& statement) const;
    // All rows of a table, or the named columns only, in row order, one text a row: column=type:value for every
    // column, joined by " | " (for example "title=text:Milk | completion_time=integer:0 | notes=null:").
    QStringList dump(const QString& table, const QStringList& columns = {}) const;

private:
    QTemporaryDir folder;
    struct_GLOBAL_COMMON_VANTOR_AND_ARTIFACT_source_info source;
    int log_position = 0;
};

// The typed dump of any SQLite file's table, as above. A missing file, table or column ends the test program.
QStringList dump_table(const QString& database_path, const QString& table, const QStringList& columns = {});

// While it lives, each line of the debug log that tells of a failure calls action at once: the place at which a host
// may cancel, or evidence may change, in the middle of a step.
class at_failure_line {
public:
    explicit at_failure_line(std::function<void()> action);
    ~at_failure_line();
    at_failure_line(const at_failure_line&) = delete;
    at_failure_line& operator=(const at_failure_line&) = delete;

private:
    QtMessageHandler before;
};

// While it lives, no file grows beyond so many bytes: writes fail as on a full disk.
class full_disk {
public:
    explicit full_disk(rlim_t largest_file);
    ~full_disk();
    full_disk(const full_disk&) = delete;
    full_disk& operator=(const full_disk&) = delete;

private:
    struct rlimit limit_before = {};
    struct sigaction action_before = {};
};

// The lines of a golden file; a missing file fails the test.
QStringList golden_lines(const QString& path);
// Compares line by line and reports the first difference; with UPDATE_GOLDEN=1 in the environment it writes the file
// instead and fails, so that nobody does so by accident.
bool matches_golden(const QStringList& lines, const QString& path);
