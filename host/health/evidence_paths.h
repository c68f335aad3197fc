// SPDX-License-Identifier: MIT
// The way to a path of the evidence, told apart: it is not there, it is there and leads on, or it is there and cannot
// be used. The third is reported, once for each path.
#pragma once

#include "host/health/evidence_record.h"
#include "host/health/health_report.h"

#include <QByteArray>
#include <QHash>

#include <sys/types.h>
#include <utility>

struct reached_path {
    bool there = false; // something usable is there
    QByteArray real;    // its location with every link resolved, below the source root
    mode_t mode = 0;    // what it is, as stat(2) tells
};

class evidence_paths {
public:
    // root: real location of the source. Both outlive this object.
    // sink: hears of the files that are read.
    evidence_paths(const QByteArray& root, health_report& report, record_sink sink)
        : source_root(root), findings(report), told(std::move(sink)) {}

    // What is at the path. Reported: a link that leads nowhere or out of the source, an error of the file system, and
    // a name that differs from the wanted one in upper and lower case only (the plugin would not find it).
    reached_path follow(const QByteArray& path);
    // True when the path is a folder that can be listed. Asked again, it answers from memory.
    bool enter(const QByteArray& folder);
    // Enters base and every folder between it and base + "/" + below; false when one is not there or not usable.
    bool enter_parents(const QByteArray& base, const QByteArray& below);

    const QByteArray& root() const { return source_root; }
    health_report& report() { return findings; }
    void record(const evidence_record& record) const { told(record); }

private:
    bool look_into(const QByteArray& folder);
    void report_other_case(const QByteArray& missing);

    const QByteArray& source_root;
    health_report& findings;
    record_sink told;
    QHash<QByteArray, bool> entered;
};
