// SPDX-License-Identifier: MIT
// A case for the command-line host: a temporary source and result folder, and the built program run as a process.
#pragma once

#include <QByteArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>
#include <QProcessEnvironment>
#include <QStringList>
#include <QTemporaryDir>

#include <functional>

inline QString q(const char* text) {
    return QString::fromUtf8(text);
}

// The built program; in_child runs in the new process before it.
struct host_process : QProcess {
    std::function<void()> in_child;
    void setupChildProcess() override { in_child(); }
};

struct host_answer {
    int code; // exit code, -1 when the process crashed or hung
    QByteArray out;
    QByteArray error;
    QJsonObject json() const { return QJsonDocument::fromJson(out).object(); }
};

class host_case {
public:
    host_case();
    ~host_case(); // takes away what QTemporaryDir cannot name

    QByteArray base() const { return folder.path().toUtf8(); }
    QByteArray source() const { return base() + "/source"; } // made by the constructor, holds an empty Users/
    QByteArray result() const { return base() + "/result"; } // not made
    QByteArray log() const { return result() + "/cortana_debug.log"; }
    QByteArray database() const { return result() + "/Artifacts_Result/Cortana/Cortana.sqlite"; }

    // Paths are bytes as the file system takes them; folders on the way are made.
    QByteArray speech_folder(const QByteArray& user) const;
    void write(const QByteArray& path, const QByteArray& content) const;
    void make_folders(const QByteArray& path) const;
    void add_recording(const QByteArray& user, const QByteArray& name) const;

    // Everything below base(): paths, kinds, sizes, link targets and contents, so that two of them compare.
    QStringList snapshot() const;
    // The first column of all rows that the statement gives from the result database.
    QStringList query(const QString& statement) const;

    // "{B}", "{S}" and "{R}" in an argument stand for base, source and result.
    host_answer run(
        const QStringList& arguments, const std::function<void()>& in_child = [] {},
        const QProcessEnvironment& environment = QProcessEnvironment::systemEnvironment()) const;
    // extract --json SOURCE RESULT with further options.
    host_answer extract(
        const QStringList& options = {}, const std::function<void()>& in_child = [] {}) const;
    QStringList filled(const QStringList& arguments) const;

private:
    QTemporaryDir folder;
};

QByteArray read_file(const QByteArray& path);

// For in_child: takes root's power to pass over permission bits. Nothing for others.
void respect_permissions();
