// SPDX-License-Identifier: MIT
// What a file is, told by its first and last bytes and never by its name. A rule over bytes alone.
#pragma once

#include <QByteArray>

namespace intake {

enum class content_kind {
    empty,
    ewf,
    vmdk,
    vhd,
    archive,     // or compressed
    not_handled, // known, and named, but not read
    unknown      // a raw image has no mark of its own, an old tar neither
};

struct judged_content {
    content_kind kind;
    const char* not_handled = nullptr; // what it is, for a person
};

constexpr int judged_head = 512; // bytes that are needed of the beginning, and of the end

// Both as long as judged_head, or as the file.
judged_content judge_content(const QByteArray& head, const QByteArray& tail);

} // namespace intake
