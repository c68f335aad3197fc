// SPDX-License-Identifier: MIT
// Which files and folders of a profile are wanted, and the upper and lower case that the plugin looks for them in: the
// one place of the intake that knows the evidence.
#pragma once

#include <QByteArray>

#include <vector>

namespace intake {

// Files of one folder of a profile.
struct wanted_files {
    QByteArray folder;             // below the profile; empty: the profile itself
    std::vector<QByteArray> names; // with at most one "*", which stands for any characters
};
const std::vector<wanted_files>& wanted_profile_files();

// The name in the wanted case when it is one of the names; else empty.
QByteArray wanted_spelling(const wanted_files& files, const QByteArray& name);

// Where package folders stand, below the profile. Of a package, everything is wanted.
QByteArray packages_folder();
// The name in the wanted case when it is that of a Cortana package; else empty.
QByteArray package_spelling(const QByteArray& name);
// A path below a package folder, its known beginning in the wanted case.
QByteArray spelling_in_package(const QByteArray& path);

// True for a path below the Windows root that, in any upper and lower case, is one of the wanted files or lies where
// rows are made of every file: only copies may stand there.
bool is_evidence_place(const QByteArray& path);

} // namespace intake
