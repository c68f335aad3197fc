// SPDX-License-Identifier: MIT
// Transaction logs of hives as Windows wrote them before 8.1: a map of the changed pages, and these pages.
#pragma once

#include "host/intake/hive_base_block.h"

#include <QString>

struct hive_dirty_log {
    hive_base_block base_block;
    QString problem;    // why it cannot be used; the rest then means nothing
    qint64 map = 0;     // offset of the map in the log: one bit a page of 512 bytes of the bins, lowest bit first
    qint64 content = 0; // offset of the pages
    qint64 pages = 0;
};

// Judges a log: finished, with a map for all of its bins and every page that the map tells of. Takes time in proportion
// to the log.
hive_dirty_log read_dirty_log(const QByteArray& log);

// Whether the log was written for the hive as it stands: both tell the same time. A hive whose base block is unsound
// tells it in its first bin.
bool is_log_of_hive(const hive_dirty_log& read, const QByteArray& hive);

// Writes the pages into a hive that has room for the log's bins, up to the first bin that is damaged. Gives their
// number; fewer than the log's if there is such a bin. The base block is left alone.
qint64 put_dirty_pages(QByteArray& hive, const QByteArray& log, const hive_dirty_log& read);
