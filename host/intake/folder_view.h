// SPDX-License-Identifier: MIT
// A plain folder of the examiner's machine as a view. Links are neither followed nor entered, and access times are left
// alone where the system allows that. Creation times are those of the file system, or of ntfs-3g where that tells none.
#pragma once

#include "host/intake/view.h"

#include <memory>

namespace intake {

struct opened_folder {
    std::unique_ptr<source_view> view; // null: it could not be opened
    QString problem;                   // why
};
opened_folder open_folder_view(const QByteArray& native_path);

} // namespace intake
