// SPDX-License-Identifier: MIT
// Copies the wanted parts of a view into a folder of the caller's, in the case that the plugin looks for them in. Of
// the source not one byte is written; of the rest only what lies below that folder.
#pragma once

#include "host/intake/staging_plan.h"

namespace intake {

struct staged_entry {
    QByteArray source; // path in the view
    QByteArray path;   // below the staging folder
    entry_kind kind = entry_kind::file;
    qint64 size = 0;   // bytes of a file; 0 for a placeholder
    QByteArray sha256; // 32 bytes, of a file; null for a folder and a placeholder
    ntfs_times times;  // as the source tells them; see set_staged_times()
    // Of a registry hive whose copy had its transaction logs applied (see staged_hives.h).
    QByteArray sha256_with_logs; // 32 bytes; null: the copy is as the source
    int log_entries = 0;

    bool is_placeholder() const { return kind == entry_kind::file && sha256.isEmpty(); }
};

// Hears of what goes on, so that what is done is known even if the process does not come to its end.
struct staging_hearer {
    std::function<void(const planned_entry&)> planned = [](const planned_entry&) {}; // each file that is to be copied
    std::function<void(const staged_entry&)> staged = [](const staged_entry&) {}; // each that stands, again if changed
};

struct staging_result {
    QVector<staged_entry> entries;
    health_report findings; // what could not be staged, by its path in the view
    QString stopped;        // why staging ended early: the staging folder, not the evidence, is at fault
};

// The folders of Users/ that can be profiles, by their names on Windows, in byte order; Public, Default, Default User
// and All Users are left out.
QVector<QByteArray> list_profiles(source_view& view, const source_root& root, health_report& findings);

// staging: an existing folder, best an empty one: nothing in it is written over. profiles: names of folders of Users,
// in the case that they are to have there. cancelled: asked often; when it says so, what is complete stays.
staging_result stage_profiles(source_view& view, const source_root& root, const QVector<QByteArray>& profiles,
                              const QByteArray& staging, const staging_limit& limit,
                              const std::function<bool()>& cancelled, const staging_hearer& hearer = {});

// Gives the copies their modification and access times, or 1970-01-01 where the source does not tell one: the time of
// copying must not look like one of the evidence. A process of its own does it: the one that stages may set no times.
// Returns why it could not; empty: all have them.
QString set_staged_times(const QByteArray& staging, const QVector<staged_entry>& entries);

// Makes an empty file or folder for every wanted path (below the Windows root, such as Users/x/y) that is a file or
// folder in the view, in the case that was asked for. What stands there already stays, and where evidence is looked for
// nothing is made: an empty file must not be taken for some. A path that leads upwards is like one that is not there; a
// link on the way is not followed, and a problem.
staging_result stage_existing(source_view& view, const source_root& root, const QVector<QByteArray>& wanted,
                              const QByteArray& staging, const staging_limit& limit,
                              const std::function<bool()>& cancelled);

} // namespace intake
