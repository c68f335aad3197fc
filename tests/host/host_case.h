// SPDX-License-Identifier: MIT
// A case for the command-line host: a temporary source and result folder, and the built program run as a process.
// Files are made with the standard library: Qt cannot spell a name that is not UTF-8.
#pragma once

#include "tests/support/file_content.h"
#include "tests/support/test_support.h"

#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>

#include <filesystem>
#include <fstream>
#include <sys/prctl.h>

#include <linux/capability.h>

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

// Paths are bytes as the file system takes them.
class host_case {
public:
    host_case() { make_folders(source() + "/Users"); }
    ~host_case() { // takes away what QTemporaryDir cannot name
        std::error_code ignored;
        std::filesystem::remove_all(base().constData(), ignored);
    }

    QByteArray base() const { return folder.path().toUtf8(); }
    QByteArray source() const { return base() + "/source"; } // made by the constructor, holds an empty Users/
    QByteArray result() const { return base() + "/result"; } // not made
    QByteArray log() const { return result() + "/cortana_debug.log"; }
    QByteArray database() const { return result() + "/Artifacts_Result/Cortana/Cortana.sqlite"; }
    QByteArray speech_folder(const QByteArray& user) const {
        return source() + "/Users/" + user +
               "/AppData/Local/Packages/Microsoft.Windows.Cortana_cw5n1h2txyewy/LocalState/LocalRecorder/Speech";
    }

    // These make the folders on the way.
    void make_folders(const QByteArray& path) const { std::filesystem::create_directories(path.constData()); }
    void write(const QByteArray& path, const QByteArray& content) const {
        make_folders(path.left(path.lastIndexOf('/')));
        if (!std::ofstream(path.constData()).write(content.constData(), content.size()).flush()) {
            qFatal("cannot write %s", path.constData());
        }
    }
    void add_recording(const QByteArray& user, const QByteArray& name) const {
        write(speech_folder(user) + '/' + name, "RIFF");
    }

    // Typed values of the rows that the result database holds of recordings.
    QStringList recordings(const QStringList& columns) const {
        return dump_table(QString::fromUtf8(database()), "latest_audio_search"_q, columns);
    }

    // The words between blanks; "{B}", "{S}" and "{R}" in them are base, source and result.
    QStringList filled(const QString& words) const {
        QStringList list = words.split(QLatin1Char(' '), Qt::SkipEmptyParts);
        list.replaceInStrings("{B}"_q, QString::fromUtf8(base()));
        list.replaceInStrings("{S}"_q, QString::fromUtf8(source()));
        return list.replaceInStrings("{R}"_q, QString::fromUtf8(result()));
    }
    host_answer run(
        const QString& words, const std::function<void()>& in_child = [] {}) const {
        host_process process;
        process.in_child = in_child;
        process.start(QStringLiteral(HOST_PROGRAM), filled(words));
        constexpr int hung = 120000;
        const bool ended = process.waitForFinished(hung) && process.exitStatus() == QProcess::NormalExit;
        return {ended ? process.exitCode() : -1, process.readAllStandardOutput(), process.readAllStandardError()};
    }
    host_answer extract(
        const QString& options = {}, const std::function<void()>& in_child = [] {}) const {
        return run("extract --json {S} {R} "_q + options, in_child);
    }

private:
    QTemporaryDir folder;
};

// For in_child: takes root's power to pass over permission bits. Nothing for others.
inline void respect_permissions() {
    ::prctl(PR_CAPBSET_DROP, CAP_DAC_OVERRIDE, 0, 0, 0);
    ::prctl(PR_CAPBSET_DROP, CAP_DAC_READ_SEARCH, 0, 0, 0);
}
