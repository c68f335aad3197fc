// SPDX-License-Identifier: MIT
// Looks over the evidence before the plugin reads it: can every folder on the way be listed, and does every file that
// the selected tables come from open and look sound? The plugin itself says nothing when it cannot open a file.
#pragma once

#include "contract/host_records.h"
#include "host/health/evidence_paths.h"
#include "source/folder_listing.h"
#include "source/places.h"

#include <QByteArray>
#include <QStringList>

#include <functional>

class source_health {
public:
    // root: real location of the source. tables: the selected ones; what no selected table comes from is not looked
    // at. cancelled: asked often; when it says so, a check stops unfinished. sink: hears of each file that is read. All
    // but tables and sink outlive this object.
    source_health(
        const QByteArray& root, const QStringList& tables, const std::function<bool()>& cancelled,
        health_report& report, const record_sink& sink = [](const evidence_record&) {})
        : paths(root, report, sink), selected(tables), is_cancelled(cancelled) {}

    // The profile folders of Users/ in byte order, without Public, Default, Default User and All Users. Folders that
    // are links (on Windows, junctions) are left out with a note; a name that cannot be passed on is a problem.
    QList<system_account> profiles();

    // Checks all that the plugin reads for this account, under both of its names.
    void check_account(const system_account& account);
    // Where the profiles lie, whether it is there or not.
    QByteArray users_folder() const;

private:
    void check_profile(const QByteArray& profile);
    void check_package_folder(const QByteArray& packages, const listed_name& listed);
    void check_place(const QByteArray& folder, const evidence_place& wanted);

    evidence_paths paths;
    QStringList selected;
    const std::function<bool()>& is_cancelled;
};
