// SPDX-License-Identifier: MIT
// Things that a confined process tries to do, and what is to keep it from each.
#pragma once

#include <QVector>

#include <functional>

struct attempt {
    const char* name;
    int landlock;    // refused by Landlock from this version on, 0: by none
    bool filter;     // refused by the filter of system calls
    bool needs_root; // refused to others in any case
    // The errno value, 0: it could be done. The working folder holds source/ (file, program, folder/, and out, a link
    // to
    // ../outside/secret), outside/secret and an empty output/.
    std::function<int()> run;
};

const QVector<attempt>& all_attempts();
