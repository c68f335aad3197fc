// SPDX-License-Identifier: MIT
// The helper object shared by every plugin of the host: tells media files by their names' extensions and copies
// evidence files into a scratch folder, so that they can be opened without touching the source. One thread only.
#pragma once

#include <QString>
#include <QStringList>
#include <QWidget>

#include <array>

class plugin_helper_functions : public QWidget {
    Q_OBJECT

public:
    explicit plugin_helper_functions(QWidget* parent = nullptr);

    void set_essentials(); // clears the cancel flag
    void set_cancel_extraction(bool cancel);
    // The scratch folder, ending in "/": file names are put directly behind it.
    void set_adhoc_parent_path(QString directory);

    // name: a file name, or an extension with its dot, in any case. False for a name without an extension, with one
    // that begins with anything but "0" to "9" or "a" to "z", and after a cancel.
    bool check_is_image_by_extn(QString name);
    bool check_is_video_by_extn(QString name);
    bool check_is_audio_by_extn(QString name);

    // Copies the file under a free name and returns the copy's path, whether or not the copy succeeded. path comes
    // from the host, never from evidence. "" for a blank path and when no free name was found (after a cancel).
    // A database brings its "-shm" and "-wal" files along.
    QString get_adhoc_path_for_database(QString path);
    QString get_adhoc_path_for_regular_file(QString path);

private:
    // The extensions of one kind, by their first character behind the dot: "0" to "9", then "a" to "z".
    using extension_lists = std::array<QStringList, 36>;

    void initialize_image_extension_list();
    void initialize_audio_extension_list();
    void initialize_video_extension_list();
    bool is_listed(const extension_lists& lists, const QString& name) const;
    QString copy_to_free_name(const QString& path, const QString& caller) const;

    bool cancel_extraction = false;
    extension_lists image_lists;
    extension_lists video_lists;
    extension_lists audio_lists;
    QString adhoc_parent_path;
};
