// SPDX-License-Identifier: MIT
// The sample source as folder, image and archive, made once for a test program.
#pragma once

#include "host/intake/open_source.h"
#include "tests/support/test_text.h"

#include <QTemporaryDir>

class evidence_files {
public:
    evidence_files(); // writes the sample source

    QByteArray path(const QByteArray& name = {}) const { return folder.path().toUtf8() + '/' + name; }
    // Runs a shell script in the folder; a script that fails ends the test program.
    void run(const QByteArray& script) const;

private:
    QTemporaryDir folder;
};

// Path, kind and content of every entry below a folder of a view, sorted, so that two of them compare.
QStringList everything_in(intake::source_view& view, const QByteArray& top);

// "path: reason", sorted.
QStringList texts(const health_report& report);

// Never cancelled.
extern const std::function<bool()> never;
