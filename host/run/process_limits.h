// SPDX-License-Identifier: MIT
// What a process holds of the machine, and the bounds that one sets for itself before it reads evidence.
#pragma once

#include <QByteArray>
#include <QString>

#include <optional>
#include <sys/types.h>

// Bytes. Address space that was asked for and never touched is in none of them.
struct process_memory {
    qint64 resident = 0;
    qint64 file_pages = 0; // of resident: mapped files, which the system can drop at any time
    qint64 swapped = 0;
    // What only the end of the process gives back.
    qint64 held() const { return resident - file_pages + swapped; }
};

// The kernel's figures for a process (they may lag by some hundred KiB a thread); nothing when it has ended, waited for
// or not, or there is no /proc.
std::optional<process_memory> memory_of(pid_t process);
// The same from the text of /proc/<pid>/status; nothing when it does not tell resident memory.
std::optional<process_memory> memory_from_status(const QByteArray& status);

// "1000", "1024K", "512M", "2G", "1T" (powers of 1024, small letters too) in bytes; nothing for any other text and for
// what does not fit.
std::optional<qint64> parse_size(const QString& text);

// These concern the calling process. False: the system refused, errno says why.

// Lets the process be killed when the thread that started it ends. parent: that thread's process, which must have told
// its own number before the start. False with errno ESRCH: it has ended already, so nothing will ever kill this one.
bool die_with_parent(pid_t parent);
// Evidence must not come to lie in a core file.
bool forbid_core_files();
// No file grows beyond so many bytes: writes fail with EFBIG.
bool limit_file_size(qint64 largest);
// When the machine runs out of memory, the kernel ends this process before those that are of more use.
bool be_ended_first();
