// SPDX-License-Identifier: MIT
// What a staging worker has told so far. Nothing of it is believed further than its bounds go.
#pragma once

#include "host/run/worker_protocol.h"

#include <QHash>
#include <QSet>

class staged_list {
public:
    // Files of the source that are to be copied.
    void plan(const QVector<QByteArray>& sources);
    // One that stands; told again, it takes the place of what was told of it.
    void add(const staged_file& file);

    const QVector<staged_file>& files() const { return list; }
    // The one that stands at a path below the staging folder; null for none.
    const staged_file* at(const QByteArray& path) const;
    // Planned files that do not stand, in byte order.
    QVector<QByteArray> missing() const;
    // Removes every other file from the staging folder: half a copy, what was not told of.
    void remove_others(const QByteArray& folder) const;
    bool holds_files() const;

private:
    QVector<staged_file> list;
    QHash<QByteArray, int> places; // by path
    QSet<QByteArray> pending;
};
