// SPDX-License-Identifier: MIT
// What has to stand in a copy of a source so that a path, which evidence chose, exists there just when it exists in the
// source.
#pragma once

#include <QByteArray>
#include <QVector>

namespace intake {

// path: below the Windows root, "/" between names. Gives plain paths: the one that it leads to, and before it each
// folder that it leaves again by "..". Empty for a path that leads above the root and for one that no system call
// takes.
QVector<QByteArray> asked_paths(const QByteArray& path);

} // namespace intake
