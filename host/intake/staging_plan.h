// SPDX-License-Identifier: MIT
// Which entries of a view are staged, and under which path: the wanted parts of the wanted profiles.
#pragma once

#include "host/health/health_report.h"
#include "host/intake/entry_finder.h"
#include "host/intake/source_root.h"

#include <QSet>

#include <functional>

namespace intake {

struct staging_limit {
    qint64 largest_file = qint64{8} << 30; // bytes
    qint64 most_bytes = qint64{64} << 30;  // all files together
    int most_entries = 200000;             // files and folders
};

struct planned_entry {
    QByteArray source; // in the view
    QByteArray path;   // below the staging folder
    view_entry entry;
};

class staging_plan {
public:
    // All outlive this object.
    staging_plan(source_view& view, const source_root& root, const staging_limit& most,
                 const std::function<bool()>& cancelled, health_report& report)
        : finder(view, root.percent_encoded), top(root), limit(most), is_cancelled(cancelled), findings(report) {}

    // profile: the name of a folder of Users, in the case that it is to have in the staging folder.
    void add_profile(const QByteArray& profile);

    const QVector<planned_entry>& files() const { return planned_files; }
    const QVector<planned_entry>& folders() const { return planned_folders; }

private:
    struct open_folder {
        QByteArray source; // in the view
        QByteArray path;   // its names on Windows, below the package
    };
    bool find_folder(const QByteArray& base, const QByteArray& wanted, found_entry& found);
    void add_files(const QByteArray& profile, const QByteArray& staged_profile);
    void add_packages(const QByteArray& profile, const QByteArray& staged_profile);
    void add_package(const QByteArray& package, const QByteArray& staged_package);
    void add_in_package(const QByteArray& staged_package, const open_folder& folder, const view_entry& entry,
                        QVector<open_folder>& folders);
    void add_file(const planned_entry& file);
    // False: it is not taken. Told: names that differ in case only, an entry too many.
    bool may_add(const planned_entry& planned);
    view_listing listed(const QByteArray& folder);

    entry_finder finder;
    const source_root& top;
    const staging_limit& limit;
    const std::function<bool()>& is_cancelled;
    health_report& findings;
    QVector<planned_entry> planned_files;
    QVector<planned_entry> planned_folders;
    QSet<QByteArray> used;        // paths
    QSet<QByteArray> used_folded; // the same without regard to case
    qint64 bytes = 0;
    bool is_full = false;
};

} // namespace intake
