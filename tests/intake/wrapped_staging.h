// SPDX-License-Identifier: MIT
// The built host beside a staging program of the test's own, which runs the real one as it likes.
#pragma once

#include "tests/host/host_case.h"

class wrapped_staging {
public:
    wrapped_staging() { run_in(programs.path(), "cp "_q + QStringLiteral(HOST_PROGRAM) + " ."_q); }

    // script: of the shell; "$real" is the real program, "$@" are its arguments.
    void wrap(const QByteArray& script) const {
        QFile file(programs.path() + "/cortana-stage"_q);
        file.open(QIODevice::WriteOnly);
        file.write("#!/bin/sh\nreal=" HOST_PROGRAM "-stage\n" + script + '\n');
        file.close();
        file.setPermissions(QFile::ReadOwner | QFile::ExeOwner | QFile::WriteOwner);
    }
    // Of the real program's messages those come through that sed lets through; when it ends, the program is killed.
    void die_after(const QByteArray& sed_script) const {
        wrap("\"$real\" \"$1\" $$ | { sed -u '" + sed_script + "'; kill -9 $$; }");
    }

    host_answer extract(const host_case& result, const QString& source, const QString& options = {}) const {
        QProcess process;
        process.start(programs.path() + "/cortana"_q,
                      result.filled("extract --json --library "_q + QStringLiteral(PLUGIN_LIBRARY) + " "_q + options +
                                    " "_q + source + " {R}"_q));
        process.waitForFinished(60000);
        return {process.exitCode(), process.readAllStandardOutput(), process.readAllStandardError()};
    }

    static void run_in(const QString& folder, const QString& script) {
        QProcess shell;
        shell.setWorkingDirectory(folder);
        shell.start("sh"_q, {"-ec"_q, script});
        if (!shell.waitForFinished(-1) || shell.exitCode() != 0) {
            qFatal("%s", shell.readAllStandardError().constData());
        }
    }

private:
    QTemporaryDir programs;
};
