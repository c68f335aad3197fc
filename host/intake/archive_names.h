// SPDX-License-Identifier: MIT
// The path of an archive's entry out of the name that the archive has for it. A rule over bytes alone.
#pragma once

#include <QByteArray>

namespace intake {

struct archive_path {
    QByteArray path;               // plain names with "/" between; empty: the top itself, or refused
    const char* refusal = nullptr; // why the name leads to no place in the archive
};
archive_path path_in_archive(const QByteArray& name);

} // namespace intake
