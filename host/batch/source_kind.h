// SPDX-License-Identifier: MIT
// Whether a file of a searched folder is a source, told by its content and its name. A rule over bytes alone.
#pragma once

#include "host/intake/content_kind.h"

#include <QSet>

namespace batch {

enum class source_kind { none, image, archive };

struct judged_file {
    source_kind kind = source_kind::none;
    const char* left_out = nullptr; // why a file that looks like a source is none; null: it does not look like one
};

// content: of its first and last bytes. siblings: the names in its folder. is_named: the user named this very file, so
// that its name matters less.
judged_file judge_file(const QByteArray& name, const intake::judged_content& content, const QSet<QByteArray>& siblings,
                       bool is_named);

} // namespace batch
