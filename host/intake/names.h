// SPDX-License-Identifier: MIT
// Comparison of names as NTFS does it, and the names that may become a part of a path.
#pragma once

#include <QByteArray>

namespace intake {

// False for what is no name of one entry: empty, ".", "..", with a "/" or a zero byte in it.
bool is_plain_name(const QByteArray& name);

// Equal for names that differ in upper and lower case only: simple case folding, character by character. Of bytes that
// are not UTF-8 only A to Z are folded.
QByteArray folded(const QByteArray& name);

// Every %XX decoded, as collections write characters that their file system does not take. The result need not be a
// plain name.
QByteArray without_percents(const QByteArray& name);

} // namespace intake
