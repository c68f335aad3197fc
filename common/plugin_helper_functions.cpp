// SPDX-License-Identifier: MIT
// Look-ups by extension and ad-hoc copies.
#include "common/plugin_helper_functions.h"

#include "common/media_extensions.h"
#include "common/plugin_static_function.h"

#include <QFileInfo>

namespace {

// The place of a first character among the lists; -1 for any that has none.
int list_of(QChar first) {
    const ushort code = first.unicode();
    if (code >= '0' && code <= '9') {
        return code - '0';
    }
    return code >= 'a' && code <= 'z' ? 10 + code - 'a' : -1;
}

template <class Lists>
void file_extensions(const media_extension_list& extensions, Lists& lists) {
    for (const char* extension : extensions) {
        lists.at(static_cast<std::size_t>(list_of(QLatin1Char(extension[1])))).append(QLatin1String(extension));
    }
}

} // namespace

plugin_helper_functions::plugin_helper_functions(QWidget* parent) : QWidget(parent) {
    initialize_image_extension_list();
    initialize_audio_extension_list();
    initialize_video_extension_list();
}

void plugin_helper_functions::initialize_image_extension_list() {
    file_extensions(image_extensions(), image_lists);
}

void plugin_helper_functions::initialize_audio_extension_list() {
    file_extensions(audio_extensions(), audio_lists);
}

void plugin_helper_functions::initialize_video_extension_list() {
    file_extensions(video_extensions(), video_lists);
}

void plugin_helper_functions::set_essentials() {
    cancel_extraction = false;
}

void plugin_helper_functions::set_cancel_extraction(bool cancel) {
    cancel_extraction = cancel;
}

void plugin_helper_functions::set_adhoc_parent_path(QString directory) {
    adhoc_parent_path = directory;
}

bool plugin_helper_functions::check_is_image_by_extn(QString name) {
    return is_listed(image_lists, name);
}

bool plugin_helper_functions::check_is_video_by_extn(QString name) {
    return is_listed(video_lists, name);
}

bool plugin_helper_functions::check_is_audio_by_extn(QString name) {
    return is_listed(audio_lists, name);
}

bool plugin_helper_functions::is_listed(const extension_lists& lists, const QString& name) const {
    const QString lowered = name.toLower().trimmed();
    if (lowered.isEmpty() || name.endsWith(QLatin1Char('.'))) {
        return false;
    }
    const int dot = lowered.lastIndexOf(QLatin1Char('.'));
    if (dot < 0 || dot + 1 == lowered.size()) {
        return false;
    }
    const QStringView extension = QStringView(lowered).mid(dot + 1);
    const int list = list_of(extension.front());
    if (list < 0) {
        return false;
    }
    for (const QString& entry : lists.at(static_cast<std::size_t>(list))) {
        if (cancel_extraction) {
            return false;
        }
        if (QStringView(entry).mid(1) == extension) { // entries have their leading dot and no other
            return true;
        }
    }
    return false;
}

QString plugin_helper_functions::copy_to_free_name(const QString& path, const QString& caller) const {
    // Without a folder of our own the copy would land in the current one.
    if (path.trimmed().isEmpty() || adhoc_parent_path.isEmpty()) {
        return QStringLiteral("");
    }
    const QString name = plugin_static_function::get_available_file(adhoc_parent_path, path, caller);
    if (name.isEmpty()) {
        return QStringLiteral(""); // the folder itself must not be taken for the copy
    }
    const QString destination = adhoc_parent_path + name;
    if (QFile::exists(destination)) {
        QFile::remove(destination);
    }
    QFile::copy(path, destination);
    return destination;
}

QString plugin_helper_functions::get_adhoc_path_for_database(QString path) {
    const QString destination = copy_to_free_name(
        path, QStringLiteral("QString plugin_helper_functions::get_adhoc_path_for_database(QString)"));
    if (destination.isEmpty()) {
        return destination;
    }
    // Deliberate: an older companion is not deleted first, and its copy then fails without a word; the caller's
    // scratch folder may hold one that is in use.
    for (const QString& companion : {QStringLiteral("-shm"), QStringLiteral("-wal")}) {
        if (QFile::exists(path + companion)) {
            QFile::copy(path + companion, destination + companion);
        }
    }
    return destination;
}

QString plugin_helper_functions::get_adhoc_path_for_regular_file(QString path) {
    return copy_to_free_name(
        path, QStringLiteral("QString plugin_helper_functions::get_adhoc_path_for_regular_file(QString)"));
}
