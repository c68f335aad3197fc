// SPDX-License-Identifier: MIT
// Where the plugin writes below the result directory that the host gives it. Texts are joined as they are; nothing is
// looked up or made.
#pragma once

#include <QString>

// The artifact's name, as the plugin tells it where no translation is installed.
inline const QString artifact_name = QStringLiteral("Cortana");

namespace result_layout {

// As folders and files are named: a blank of the artifact's name becomes "_".
inline QString file_name_of(const QString& artifact_name) {
    return QString(artifact_name).replace(QLatin1Char(' '), QLatin1Char('_'));
}

// The plugin's own folder, ending in "/". result_directory may end in "/" or not.
inline QString plugin_folder(const QString& result_directory, const QString& artifact_name) {
    const QString slash = result_directory.endsWith(QLatin1Char('/')) ? QString() : QStringLiteral("/");
    return result_directory + slash + QStringLiteral("Artifacts_Result/") + file_name_of(artifact_name) +
           QLatin1Char('/');
}

// Its working folder, ending in "/"; the plugin removes it with all that is in it when a run ends.
inline QString temporary_folder(const QString& plugin_folder) {
    return plugin_folder + QStringLiteral("tmp/");
}

inline QString database_file(const QString& plugin_folder, const QString& artifact_name) {
    return plugin_folder + file_name_of(artifact_name) + QStringLiteral(".sqlite");
}

} // namespace result_layout
