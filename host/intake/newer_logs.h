// SPDX-License-Identifier: MIT
// Which transaction logs beside a registry hive hold writes that the hive itself does not have.
#pragma once

#include <QByteArray>
#include <QStringList>

// A sentence for each of the files HIVE.LOG1 and HIVE.LOG2 that holds such entries, and for each that cannot be read.
// Empty when the hive was finished, when no log is there, and when the hive itself cannot be read. Reads quietly and
// follows no link; of a log not more than 256 MiB, far above what Windows lets one grow to.
QStringList newer_log_notes(const QByteArray& native_hive);
