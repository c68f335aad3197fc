// SPDX-License-Identifier: MIT
// Files are made with system calls: Qt cannot spell a name that is not UTF-8.
#include "host_case.h"

#include "host/native_files.h"

#include <QFile>
#include <QSqlDatabase>
#include <QSqlQuery>
#include <QVariant>

#include <fcntl.h>
#include <ftw.h>
#include <sys/prctl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <linux/capability.h>

namespace {

void add_to_snapshot(const QByteArray& folder, QStringList& entries) {
    for (const QByteArray& name : list_folder(folder).names) {
        const QByteArray path = folder + '/' + name;
        struct stat status = {};
        ::lstat(path.constData(), &status);
        QByteArray target(4096, '\0');
        const ssize_t length = ::readlink(path.constData(), target.data(), static_cast<size_t>(target.size()));
        const QByteArray content = S_ISREG(status.st_mode) ? read_file(path) : target.left(static_cast<int>(length));
        entries.append(QStringLiteral("%1 %2 %3").arg(text_of(path)).arg(status.st_mode).arg(text_of(content)));
        if (S_ISDIR(status.st_mode)) {
            add_to_snapshot(path, entries);
        }
    }
}

} // namespace

host_case::host_case() {
    make_folders(source() + "/Users");
}

host_case::~host_case() {
    const auto remove = [](const char* path, const struct stat*, int, FTW*) { return ::remove(path); };
    ::nftw(base().constData(), remove, 16, FTW_DEPTH | FTW_PHYS);
}

QByteArray host_case::speech_folder(const QByteArray& user) const {
    return source() + "/Users/" + user +
           "/AppData/Local/Packages/Microsoft.Windows.Cortana_cw5n1h2txyewy/LocalState/LocalRecorder/Speech";
}

void host_case::make_folders(const QByteArray& path) const {
    for (int slash = path.indexOf('/', 1); slash >= 0; slash = path.indexOf('/', slash + 1)) {
        ::mkdir(path.left(slash).constData(), 0755);
    }
    ::mkdir(path.constData(), 0755);
}

void host_case::write(const QByteArray& path, const QByteArray& content) const {
    make_folders(path.left(path.lastIndexOf('/')));
    const int file = ::open(path.constData(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0644);
    if (file < 0 || ::write(file, content.constData(), static_cast<size_t>(content.size())) != content.size()) {
        qFatal("cannot write %s", path.constData());
    }
    ::close(file);
}

void host_case::add_recording(const QByteArray& user, const QByteArray& name) const {
    write(speech_folder(user) + '/' + name, "RIFF");
}

QStringList host_case::snapshot() const {
    QStringList entries;
    add_to_snapshot(base(), entries);
    return entries;
}

QStringList host_case::query(const QString& statement) const {
    QStringList values;
    {
        QSqlDatabase opened = QSqlDatabase::addDatabase(q("QSQLITE"), statement);
        opened.setDatabaseName(QString::fromUtf8(database()));
        opened.open();
        for (QSqlQuery rows(statement, opened); rows.next();) {
            values.append(rows.value(0).toString());
        }
    }
    QSqlDatabase::removeDatabase(statement);
    return values;
}

QStringList host_case::filled(const QStringList& arguments) const {
    QStringList words = arguments;
    words.replaceInStrings(q("{B}"), QString::fromUtf8(base()));
    words.replaceInStrings(q("{S}"), QString::fromUtf8(source()));
    words.replaceInStrings(q("{R}"), QString::fromUtf8(result()));
    return words;
}

host_answer host_case::run(const QStringList& arguments, const std::function<void()>& in_child,
                           const QProcessEnvironment& environment) const {
    host_process process;
    process.in_child = in_child;
    process.setProcessEnvironment(environment);
    process.start(QStringLiteral(HOST_PROGRAM), filled(arguments));
    constexpr int hung = 120000;
    const bool ended = process.waitForFinished(hung) && process.exitStatus() == QProcess::NormalExit;
    return {ended ? process.exitCode() : -1, process.readAllStandardOutput(), process.readAllStandardError()};
}

host_answer host_case::extract(const QStringList& options, const std::function<void()>& in_child) const {
    return run(QStringList{q("extract"), q("--json")} + options + QStringList{q("{S}"), q("{R}")}, in_child);
}

QByteArray read_file(const QByteArray& path) {
    const int file = ::open(path.constData(), O_RDONLY | O_CLOEXEC);
    QByteArray content;
    char buffer[65536];
    for (ssize_t got = 1; file >= 0 && (got = ::read(file, buffer, sizeof buffer)) > 0;) {
        content.append(buffer, static_cast<int>(got));
    }
    ::close(file);
    return content;
}

void respect_permissions() {
    ::prctl(PR_CAPBSET_DROP, CAP_DAC_OVERRIDE, 0, 0, 0);
    ::prctl(PR_CAPBSET_DROP, CAP_DAC_READ_SEARCH, 0, 0, 0);
}
