// SPDX-License-Identifier: MIT
// What a process needs to read besides evidence.
#pragma once

#include <QByteArray>
#include <QVector>

// Native paths for sandbox_plan::readable: the folders of libraries and of Qt's plugins, locale and time zone data,
// sources of random numbers, the calling process's own entry in /proc (so call it in the process that will be
// confined). Some may not exist. A plugin library at a place of its own is the caller's to add, with its folder when it
// brings others.
QVector<QByteArray> runtime_paths();
