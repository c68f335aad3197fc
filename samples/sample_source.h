// SPDX-License-Identifier: MIT
// Writes a whole sample Windows source: two profiles with every kind of file that the plugin reads. The content is
// fixed, so every run of the plugin over it gives the same rows (times of files excepted).
#pragma once

#include <QString>

// One profile of the sample. Its folder is root + "Users/" + user + "/"; the Cortana package folder lies below it.
struct sample_profile {
    QString root; // source root, ending in "/"
    QString user; // profile folder and account name
    int number;   // 0, 1, ...: the content differs a little from profile to profile
    QString folder() const { return root + QStringLiteral("Users/") + user + QLatin1Char('/'); }
    QString package_folder() const {
        return folder() + QStringLiteral("AppData/Local/Packages/Microsoft.Windows.Cortana_cw5n1h2txyewy/");
    }
};

// Each writes its files below the profile's folder, creating folders as needed, and replaces files of that name.
// False: a file could not be written (reason on standard error).
bool write_sample_reminders(
    const sample_profile& profile); // LocalState/ESEDatabase_CortanaCoreInstance/CortanaCoreDb.dat
bool write_sample_webcache(const sample_profile& profile); // AppData/Local/Microsoft/Windows/WebCache/WebCacheV01.dat
bool write_sample_hive(const sample_profile& profile);     // NTUSER.DAT
bool write_sample_graph(const sample_profile& profile);    // LocalState/Graph/
bool write_sample_speech(const sample_profile& profile);   // LocalState/LocalRecorder/Speech/

// The whole source, profiles "anna" and "bernd", below root (created if missing, "/" at its end optional).
bool write_sample_source(const QString& root);
