// SPDX-License-Identifier: MIT
// Source-file labels, user names, file times and sizes, and the few file operations on the plugin's own folders.
#include "common/birth_time.h"
#include "common/plugin_static_function.h"
#include "source/directory_walk.h"

#include <QDir>
#include <QFileInfo>

#include <sys/stat.h>

namespace {

qint64 unix_seconds(const QDateTime& time) {
    return time.isValid() ? time.toMSecsSinceEpoch() / 1000 : 0;
}

// Only where the file system tells no birth time is the attribute asked.
qint64 birth_seconds(const QFileInfo& file) {
    const QDateTime time = file.birthTime();
    return time.isValid() ? unix_seconds(time) : birth_time_in_attribute(QFile::encodeName(file.filePath()));
}

// Entries of the plugin's own folders, "." and ".." left out.
constexpr QDir::Filters every_entry = QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot;

} // namespace

QString plugin_static_function::get_source_count_name() {
    return QStringLiteral("Source") + QString::number(source_count_int);
}

QPair<QString, QString> plugin_static_function::extract_user_name_from_sourcefile(QString path, QString root) {
    const QPair<QString, QString> unknown(QStringLiteral(""), QStringLiteral(""));
    if (system_account_QList.isEmpty()) {
        return unknown;
    }
    const QStringList parts = path.mid(root.size()).split(QLatin1Char('/'));
    if (parts.size() < 2) {
        return unknown;
    }
    const QString& folder = parts.at(1); // behind "Users"
    for (const auto& account : qAsConst(system_account_QList)) {
        if (account.system_user == folder) {
            return {account.system_user, account.domain_user};
        }
    }
    return {folder, QStringLiteral("")};
}

QPair<QString, QString> plugin_static_function::get_final_artifact_source_file(QString source_file, QString cut_text,
                                                                               QString location_kind) {
    QString as_passed = QStringLiteral("");
    QString shown = source_file;
    if (location_kind == QLatin1String("macOS_Home_Directory")) {
        as_passed = source_file;
        const int found = shown.indexOf(cut_text);
        if (found >= 0) {
            shown.remove(0, found + cut_text.size());
        }
    }
    if (!shown.startsWith(QLatin1Char('/')) && !shown.trimmed().isEmpty()) {
        shown.prepend(QLatin1Char('/'));
    }
    return {shown, as_passed};
}

file_times plugin_static_function::get_posix_timestamp(QString relative_path, QString root) {
    // Deliberate: both texts are trimmed, callers pass texts with blanks around them. So a name that itself ends in
    // white space is looked up without it and may find a sibling: who has such a name must not ask.
    const QString relative = relative_path.trimmed();
    const QString prefix = root.trimmed();
    if (relative.isEmpty() || prefix.isEmpty()) {
        return {};
    }
    const QFileInfo file(prefix + relative);
    if (!file.exists()) {
        return {};
    }
    return {birth_seconds(file), unix_seconds(file.lastRead()), unix_seconds(file.lastModified())};
}

QString plugin_static_function::mining_size(QString path) {
    const QFileInfo file(path);
    if (path.isEmpty() || !file.exists()) {
        return QStringLiteral("");
    }
    if (!file.isDir()) {
        return QString::number(file.size());
    }
    qint64 sum = 0;
    const bool whole = walk_directory(path, [&sum](const walk_entry& entry) {
        if (bool_cancel_extraction) {
            return false;
        }
        struct stat status = {}; // by the native path: Qt cannot reach a name that is not UTF-8
        if (::lstat(entry.native_path.constData(), &status) == 0 && !S_ISDIR(status.st_mode) &&
            !S_ISLNK(status.st_mode)) {
            sum += status.st_size;
        }
        return true;
    });
    return QString::number(whole ? sum : file.size());
}

void plugin_static_function::remove_directory(QString path) {
    if (path.isEmpty()) {
        return; // Qt would take it for the current folder
    }
    QString folder_path = path;
    while (folder_path.size() > 1 && folder_path.endsWith(QLatin1Char('/'))) {
        folder_path.chop(1); // with a "/" at its end a link would be followed
    }
    const QFileInfo folder(folder_path);
    if (folder.isSymLink()) {
        QFile::remove(folder_path);
        return;
    }
    if (!folder.isDir()) {
        return;
    }
    const QFileInfoList entries = QDir(folder_path).entryInfoList(every_entry);
    for (const QFileInfo& entry : entries) {
        if (entry.isDir() && !entry.isSymLink()) {
            remove_directory(entry.filePath());
        } else {
            QFile::remove(entry.filePath());
        }
    }
    QDir().rmdir(folder_path);
}

QString plugin_static_function::get_available_file(QString dir, QString file_path, QString caller) {
    QDir().mkpath(dir);
    const QString name = QFileInfo(file_path).fileName();
    QString candidate = name;
    for (qint64 number = 1; !bool_cancel_extraction; ++number) {
        if (!is_file_exist_in_dir(dir, candidate, caller)) {
            return bool_cancel_extraction ? QStringLiteral("") : candidate; // a look that was cancelled tells nothing
        }
        candidate = QString::number(number) + QLatin1Char('_') + name;
    }
    return QStringLiteral("");
}

bool plugin_static_function::is_file_exist_in_dir(QString dir, QString name, QString /*caller*/) {
    const QString wanted = name.trimmed();
    const QStringList entries = QDir(dir).entryList(every_entry);
    for (const QString& entry : entries) {
        if (bool_cancel_extraction) {
            return false;
        }
        if (entry.trimmed() == wanted) {
            return true;
        }
    }
    return false;
}
