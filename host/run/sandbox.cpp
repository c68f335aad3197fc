// SPDX-License-Identifier: MIT
// The filter comes last, since it refuses the calls that the others are made with.
#include "host/run/sandbox.h"

#include "host/run/landlock.h"
#include "host/run/syscall_filter.h"
#include "source/native_names.h"

#include <QStringList>

#include <cerrno>
#include <sched.h>
#include <sys/prctl.h>

// Of AddressSanitizer's runtime; absent in other builds. NOLINTNEXTLINE(*-identifier*): the name is not ours
extern "C" __attribute__((weak)) void __lsan_do_leak_check();

namespace {

// Leaving a group of threads is refused while there are others, and changes nothing for the only one.
bool has_other_threads() {
    return ::unshare(CLONE_THREAD) != 0 && errno == EINVAL;
}

QString forbid_new_privileges() {
    if (has_other_threads()) {
        return QStringLiteral("the process has other threads already");
    }
    return ::prctl(PR_SET_NO_NEW_PRIVS, 1, 0, 0, 0) == 0 ? QString() : error_words(errno);
}

// The leak check at the exit traces the process from another one, which the filter refuses. It runs only once.
void settle_leak_check() {
    if (__lsan_do_leak_check != nullptr) {
        __lsan_do_leak_check();
    }
}

} // namespace

sandbox_state confine_process(const sandbox_plan& plan) {
    sandbox_state state;
    const QString trouble = forbid_new_privileges();
    state.no_new_privs = trouble.isNull();
    if (!state.no_new_privs) { // neither of the others works without
        state.landlock = plan.landlock ? protection::failed : protection::off;
        state.syscall_filter = plan.syscall_filter ? protection::failed : protection::off;
        state.note = QStringLiteral("the process cannot be confined: ") + trouble;
        return state;
    }
    QStringList notes;
    if (plan.landlock) {
        const landlock_outcome outcome = apply_landlock(plan.readable, plan.writable, plan.listable);
        state.landlock = outcome.result;
        state.landlock_abi = outcome.abi;
        notes += outcome.note;
    }
    if (plan.syscall_filter) {
        settle_leak_check();
        const filter_outcome outcome = apply_syscall_filter();
        state.syscall_filter = outcome.result;
        notes += outcome.note;
    }
    notes.removeAll(QString());
    state.note = notes.join(QStringLiteral("; "));
    return state;
}
