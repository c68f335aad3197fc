// SPDX-License-Identifier: MIT
// Confinement of a process that is about to read evidence: what a fault in a parser is turned into must not reach
// beyond the process's own output folder.
#pragma once

#include <QByteArray>
#include <QString>
#include <QVector>

// Paths are native bytes, folders with everything below them; links are followed when the process is confined, not
// later.
struct sandbox_plan {
    QVector<QByteArray> readable; // what is not there, or cannot be entered, is passed over
    QVector<QByteArray> writable; // must be there; may be read as well
    QVector<QByteArray> listable; // folders whose names, and those of all below, may be read; passed over as above
    bool landlock = true;
    bool syscall_filter = true;
};

enum class protection {
    off,         // not asked for
    active,      // took hold
    unavailable, // the kernel has no such thing, or it is switched off there
    failed,      // the kernel has it, yet it could not be applied
};

struct sandbox_state {
    bool no_new_privs = false;
    protection landlock = protection::off;
    int landlock_abi = 0; // the version that took hold, 0 for none
    protection syscall_filter = protection::off;
    QString note; // why something is unavailable or failed, in words for the user; empty otherwise

    bool has_failed() const {
        return !no_new_privs || landlock == protection::failed || syscall_filter == protection::failed;
    }
};

// Confines the calling process for the rest of its life. Call it while the process has one thread: with others, which
// it could not reach, everything fails. Files that are open stay usable. What has taken hold stays so when something
// else fails.
//
// Landlock leaves the plan's files, no running of programs, no TCP, no signals to others (each as far as the
// kernel's version goes); /dev/null is always there. The filter leaves the system calls that the plugin's libraries
// need. Everything else fails with EPERM, so no other process can be made, reached or traced, no socket can be opened,
// and mode, owner, attributes and times of files stay as they are, the process's own files' too.
sandbox_state confine_process(const sandbox_plan& plan);
