// SPDX-License-Identifier: MIT
// What the commands that examine a source do alike: find it and its profiles, and say what was seen of the evidence.
#pragma once

#include "host/run/extract_options.h"
#include "host/run/staging_run.h"
#include "host/run/summary.h"

#include <QByteArray>
#include <QList>
#include <QString>

#include <memory>

// Says the message on standard error and returns the code.
int refuse(int code, const QString& message);

// The source's real location; on refusal empty, with the exit code set and the reason said.
QByteArray find_source(const QString& source, int& code);
// What the plugin and the checks read: the source itself, or a staged copy of its wanted parts.
struct examined_source {
    QString given;   // real location of the source
    QByteArray root; // real location of the folder to read
    bool is_staged = false;
    // Of a source that is no plain folder: copies may lie in the staging folder, whatever came of it.
    std::unique_ptr<staged_source> copies;
};
// staging: folder to copy to where need be, ending in "/". False: the exit code is set and the reason said.
bool open_examined(const extract_options& options, const QByteArray& source, const QString& staging,
                   examined_source& examined, int& code);
// As the plugin takes it: text, ending in "/".
QString root_with_slash(const QByteArray& source);

// The profiles to examine: those that were asked for, else those of the source. Empty, with the exit code set and the
// reason said, when there are none. What was seen on the way goes to findings.
QList<system_account> choose_profiles(const extract_options& options, const examined_source& source,
                                      health_report& findings, int& code);

// Say on standard error, a line each. quiet: no notes.
void say_findings(const health_report& health, bool quiet);
void say_losses(const run_summary& summary);
