// SPDX-License-Identifier: MIT
// /proc/<pid>/status is read rather than smaps_rollup: it costs no walk of the page tables and asks for no rights.
#include "host/run/process_limits.h"

#include "source/quiet_open.h"

#include <QFile>

#include <cerrno>
#include <csignal>
#include <limits>
#include <sys/prctl.h>
#include <sys/resource.h>

namespace {

// Lines are "VmRSS:\t    1234 kB".
std::optional<qint64> kilobytes_in(const QByteArray& status, const QByteArray& field) {
    const int line = status.indexOf('\n' + field + ':');
    if (line < 0) {
        return {};
    }
    const int begin = line + field.size() + 2;
    QByteArray words = status.mid(begin, status.indexOf('\n', begin) - begin).trimmed();
    if (!words.endsWith(" kB")) {
        return {};
    }
    words.chop(3);
    bool is_number = false;
    const qint64 count = words.trimmed().toLongLong(&is_number);
    return is_number && count >= 0 && count <= std::numeric_limits<qint64>::max() / 1024 ? count * 1024
                                                                                         : std::optional<qint64>();
}

// How many bits a unit shifts by; nothing for what is no unit.
std::optional<int> shift_of(QChar unit) {
    switch (unit.toLower().unicode()) {
    case 'k':
        return 10;
    case 'm':
        return 20;
    case 'g':
        return 30;
    case 't':
        return 40;
    default:
        return {};
    }
}

} // namespace

std::optional<process_memory> memory_from_status(const QByteArray& status) {
    const std::optional<qint64> resident = kilobytes_in(status, "VmRSS");
    if (!resident) {
        return {};
    }
    process_memory memory;
    memory.resident = *resident;
    memory.file_pages = qMin(kilobytes_in(status, "RssFile").value_or(0), *resident);
    memory.swapped = kilobytes_in(status, "VmSwap").value_or(0);
    return memory;
}

std::optional<process_memory> memory_of(pid_t process) {
    const quiet_file file("/proc/" + QByteArray::number(process) + "/status", O_RDONLY | O_CLOEXEC);
    char text[8192]; // twice what the longest such file comes to
    const qint64 size = file.is_open() ? file.read(text, sizeof(text), 0) : 0;
    return memory_from_status(QByteArray(text, static_cast<int>(size)));
}

std::optional<qint64> parse_size(const QString& text) {
    const std::optional<int> shift = text.isEmpty() ? std::nullopt : shift_of(text.back());
    const QString digits = shift ? text.chopped(1) : text;
    for (const QChar digit : digits) { // toLongLong() also takes signs and blanks
        if (digit < QLatin1Char('0') || digit > QLatin1Char('9')) {
            return {};
        }
    }
    bool fits = false;
    const qint64 count = digits.toLongLong(&fits);
    if (!fits || count > std::numeric_limits<qint64>::max() >> shift.value_or(0)) {
        return {};
    }
    return count << shift.value_or(0);
}

bool die_with_parent(pid_t parent) {
    if (::prctl(PR_SET_PDEATHSIG, SIGKILL, 0, 0, 0) != 0) {
        return false;
    }
    if (::getppid() != parent) { // it ended before the signal was asked for
        errno = ESRCH;
        return false;
    }
    return true;
}

bool forbid_core_files() {
    const rlimit none = {0, 0};
    return ::setrlimit(RLIMIT_CORE, &none) == 0;
}

bool limit_file_size(qint64 largest) {
    if (largest < 0) {
        errno = EINVAL;
        return false;
    }
    rlimit limit = {};
    if (std::signal(SIGXFSZ, SIG_IGN) == SIG_ERR || ::getrlimit(RLIMIT_FSIZE, &limit) != 0) {
        return false;
    }
    limit.rlim_max = qMin(static_cast<rlim_t>(largest), limit.rlim_max);
    limit.rlim_cur = limit.rlim_max;
    return ::setrlimit(RLIMIT_FSIZE, &limit) == 0;
}

bool be_ended_first() {
    QFile file(QStringLiteral("/proc/self/oom_score_adj"));
    const QByteArray score = "500"; // of -1000 to 1000; raising it needs no rights
    return file.open(QIODevice::WriteOnly | QIODevice::Unbuffered) && file.write(score) == score.size();
}
