// SPDX-License-Identifier: MIT
// A location is real when every link on its existing part is resolved; what does not exist yet is appended to that.
#include "host/run/output_location.h"

#include "contract/result_layout.h"
#include "host/exit_codes.h"
#include "host/record/links_file.h"
#include "source/native_names.h"
#include "source/real_location.h"

#include <QDir>
#include <QFile>

#include <cerrno>
#include <sys/stat.h>
#include <unistd.h>

namespace {

struct future_path {
    QByteArray real;     // the whole path
    QByteArray existing; // the part of it that exists
    QString refusal;     // why it can never be
};

future_path locate(const QString& path) {
    QByteArray existing = QFile::encodeName(QDir::current().absoluteFilePath(path));
    QByteArray missing;
    while (true) {
        const QByteArray real = real_location(existing);
        if (!real.isEmpty()) {
            return {(real == "/" && !missing.isEmpty() ? QByteArray() : real) + missing, real, {}};
        }
        const int error = errno;
        struct stat status = {};
        if (::lstat(existing.constData(), &status) == 0) {
            const bool link = S_ISLNK(status.st_mode);
            return {{}, {}, link ? QStringLiteral("a link on the way leads nowhere") : error_words(error)};
        }
        const int slash = existing.lastIndexOf('/');
        const QByteArray name = existing.mid(slash + 1);
        if (error != ENOENT || slash < 0 || name == "..") {
            return {{}, {}, error_words(error)};
        }
        if (!name.isEmpty() && name != ".") {
            missing.prepend('/' + name);
        }
        existing.truncate(slash > 0 ? slash : 1);
    }
}

// Why a folder cannot be made or written to at the path, or an empty text.
QString folder_trouble(const future_path& path) {
    struct stat status = {};
    if (!path.refusal.isEmpty()) {
        return path.refusal;
    }
    if (::stat(path.existing.constData(), &status) != 0) {
        return error_words(errno);
    }
    if (!S_ISDIR(status.st_mode)) {
        return path.real == path.existing ? QStringLiteral("it is not a folder") : error_words(ENOTDIR);
    }
    return ::access(path.existing.constData(), W_OK | X_OK) == 0 ? QString() : error_words(errno);
}

// Why a file cannot be made or written to at the path; its folder must exist unless it is one that we make.
QString file_trouble(const future_path& path, const QByteArray& made_by_us) {
    struct stat status = {};
    if (!path.refusal.isEmpty()) {
        return path.refusal;
    }
    if (path.real != path.existing) {
        const QByteArray folder = path.real.left(path.real.lastIndexOf('/'));
        const bool will_exist = folder == path.existing || path.existing == "/" || is_at_or_below(made_by_us, folder);
        return will_exist ? folder_trouble(path) : QStringLiteral("its folder does not exist");
    }
    if (::stat(path.real.constData(), &status) != 0) {
        return error_words(errno);
    }
    if (!S_ISREG(status.st_mode)) {
        return QStringLiteral("it is not a regular file");
    }
    return ::access(path.real.constData(), R_OK | W_OK) == 0 ? QString() : error_words(errno);
}

output_location refusal(int code, const QString& what, const QString& path, const QString& why) {
    output_location refused;
    refused.refused = code;
    refused.reason = QStringLiteral("%1 %2 cannot be used: %3").arg(what, path, why);
    return refused;
}

} // namespace

output_location settle_output(const QString& result, const QString& log, const QByteArray& source) {
    const QString the_result = QStringLiteral("the result folder");
    const QString the_log = QStringLiteral("the debug log");
    const QString in_source = QStringLiteral("it lies inside the source");
    const future_path folder = locate(result);
    const QString trouble = folder_trouble(folder);
    if (!folder.real.isEmpty() && is_at_or_below(folder.real, source)) {
        return refusal(exit_usage, the_result, result, in_source);
    }
    if (!trouble.isEmpty()) {
        return refusal(exit_output, the_result, result, trouble);
    }
    output_location output;
    output.result = QFile::decodeName(folder.real == "/" ? folder.real : folder.real + '/');
    output.log = log.isEmpty() ? output.result + QStringLiteral("cortana_debug.log") : log;
    const QString below = result_layout::plugin_folder(output.result, artifact_name);
    output.folder = below;
    output.workers = below + QStringLiteral(".workers/");
    output.staged = below + QStringLiteral("staged/");
    output.database = result_layout::database_file(below, artifact_name);

    const future_path folders[] = {locate(below), locate(output.workers), locate(output.staged)};
    const future_path files[] = {
        locate(output.log), locate(output.database), locate(output.database + QStringLiteral("-journal")),
        locate(links_file(output.database)), locate(links_file(output.database) + QStringLiteral("-journal"))};
    for (const future_path& path : folders) {
        const QString why = folder_trouble(path);
        if (!path.real.isEmpty() && is_at_or_below(path.real, source)) {
            return refusal(exit_usage, the_result, result, in_source);
        }
        if (!why.isEmpty()) {
            return refusal(exit_output, the_result, below, why);
        }
        if (is_at_or_below(source, path.real)) { // the working folder is removed with all that is in it
            return refusal(exit_usage, the_result, result, QStringLiteral("the source lies in the plugin's folder"));
        }
        if (is_at_or_below(files[0].real, path.real)) {
            return refusal(exit_usage, the_log, output.log, QStringLiteral("it lies in the plugin's folder"));
        }
    }
    for (const future_path& path : files) {
        const bool is_log = &path == files;
        const QString why = file_trouble(path, folders[0].real);
        const QString named = is_log ? output.log : output.database;
        if (!path.real.isEmpty() && is_at_or_below(path.real, source)) {
            return refusal(exit_usage, is_log ? the_log : the_result, named, in_source);
        }
        if (!why.isEmpty()) {
            return refusal(exit_output, is_log ? the_log : the_result, named, why);
        }
    }
    output.log = QFile::decodeName(files[0].real);
    return output;
}
