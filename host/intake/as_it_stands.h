// SPDX-License-Identifier: MIT
// Whether the plugin can read a folder as it stands, or only a staged copy of its wanted parts.
#pragma once

#include "host/intake/source_root.h"

namespace intake {

enum class standing {
    as_wanted,    // every wanted part that is there stands where the plugin looks for it
    has_logs,     // so, and beside a registry hive lies a transaction log with something in it
    needs_staging // the Windows tree stands deeper, or a name differs in upper and lower case
};

// By names and sizes alone: no file is opened. profiles: names of folders of Users. Links are left to whoever reads.
standing standing_of(source_view& view, const source_root& root, const QVector<QByteArray>& profiles);

// A hive whose writes are not finished lies beside a log with something in it. Opens the hives, and reads their begin.
bool has_unfinished_hive(source_view& view, const source_root& root, const QVector<QByteArray>& profiles);

} // namespace intake
