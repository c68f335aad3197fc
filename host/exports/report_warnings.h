// SPDX-License-Identifier: MIT
// What a reader must know before the rows: what could not be read, was lost, is damaged, or does not belong together.
#pragma once

#include "host/exports/report_record.h"

#include <QMap>

#include <string>

// What the rows themselves tell.
struct report_facts {
    qint64 rows = 0;
    qint64 reminders = 0;           // rows of the three tables
    QMap<QByteArray, qint64> links; // what the ids say -> rows, "" for those that were not looked at
    bool has_links = false;         // there is a links database
    qint64 not_shown = 0;           // reminders that no row shows
};

std::string warnings_html(const report_record& record, const report_facts& facts);
