// SPDX-License-Identifier: MIT
// A list of what is allowed; anything else, known or not, fails with EPERM. Arguments of type int are compared in their
// lower half, which is all that the kernel looks at.
#include "host/run/syscall_filter.h"

#include "source/native_names.h"

#include <cerrno>
#include <fcntl.h>
#include <initializer_list>
#include <linux/fs.h>
#include <linux/seccomp.h>
#include <memory>
#include <sched.h>
#include <seccomp.h>
#include <sys/ioctl.h>
#include <sys/prctl.h>
#include <sys/syscall.h>
#include <unistd.h>

namespace {

// Reading and writing; which files, Landlock says. No truncate(2), which older versions of it do not know, and nothing
// that sets modes, owners, attributes or times: it knows none of those, and they would change evidence.
constexpr int file_calls[] = {
    SCMP_SYS(access),
    SCMP_SYS(chdir),
    SCMP_SYS(close),
    SCMP_SYS(close_range),
    SCMP_SYS(creat),
    SCMP_SYS(dup),
    SCMP_SYS(dup2),
    SCMP_SYS(dup3),
    SCMP_SYS(faccessat),
    SCMP_SYS(faccessat2),
    SCMP_SYS(fadvise64),
    SCMP_SYS(fallocate),
    SCMP_SYS(fchdir),
    SCMP_SYS(fdatasync),
    SCMP_SYS(fgetxattr),
    SCMP_SYS(flistxattr),
    SCMP_SYS(flock),
    SCMP_SYS(fstat),
    SCMP_SYS(fstatfs),
    SCMP_SYS(fsync),
    SCMP_SYS(ftruncate),
    SCMP_SYS(getcwd),
    SCMP_SYS(getdents),
    SCMP_SYS(getdents64),
    SCMP_SYS(getxattr),
    SCMP_SYS(lgetxattr),
    SCMP_SYS(linkat),
    SCMP_SYS(listxattr),
    SCMP_SYS(llistxattr),
    SCMP_SYS(lseek),
    SCMP_SYS(lstat),
    SCMP_SYS(mkdir),
    SCMP_SYS(mkdirat),
    SCMP_SYS(newfstatat),
    SCMP_SYS(pread64),
    SCMP_SYS(preadv),
    SCMP_SYS(preadv2),
    SCMP_SYS(pwrite64),
    SCMP_SYS(pwritev),
    SCMP_SYS(pwritev2),
    SCMP_SYS(read),
    SCMP_SYS(readahead),
    SCMP_SYS(readlink),
    SCMP_SYS(readlinkat),
    SCMP_SYS(readv),
    SCMP_SYS(rename),
    SCMP_SYS(renameat),
    SCMP_SYS(renameat2),
    SCMP_SYS(rmdir),
    SCMP_SYS(sendfile),
    SCMP_SYS(stat),
    SCMP_SYS(statfs),
    SCMP_SYS(statx),
    SCMP_SYS(umask),
    SCMP_SYS(unlink),
    SCMP_SYS(unlinkat),
    SCMP_SYS(write),
    SCMP_SYS(writev),
    SCMP_SYS(copy_file_range),
    SCMP_SYS(sync_file_range),
};

constexpr int memory_and_thread_calls[] = {
    SCMP_SYS(arch_prctl),
    SCMP_SYS(brk),
    SCMP_SYS(exit),
    SCMP_SYS(exit_group),
    SCMP_SYS(futex),
    SCMP_SYS(get_robust_list),
    SCMP_SYS(getcpu),
    SCMP_SYS(madvise),
    SCMP_SYS(membarrier),
    SCMP_SYS(memfd_create),
    SCMP_SYS(mincore),
    SCMP_SYS(mmap),
    SCMP_SYS(mprotect),
    SCMP_SYS(mremap),
    SCMP_SYS(msync),
    SCMP_SYS(munmap),
    SCMP_SYS(restart_syscall),
    SCMP_SYS(rseq),
    SCMP_SYS(rt_sigaction),
    SCMP_SYS(rt_sigpending),
    SCMP_SYS(rt_sigprocmask),
    SCMP_SYS(rt_sigreturn),
    SCMP_SYS(rt_sigsuspend),
    SCMP_SYS(rt_sigtimedwait),
    SCMP_SYS(sched_yield),
    SCMP_SYS(sched_get_priority_max),
    SCMP_SYS(set_robust_list),
    SCMP_SYS(sched_get_priority_min),
    SCMP_SYS(set_tid_address),
    SCMP_SYS(sched_getaffinity),
    SCMP_SYS(sigaltstack),
    SCMP_SYS(sched_getparam),
    SCMP_SYS(setrlimit),
    SCMP_SYS(sched_getscheduler),
};

// Waiting, clocks, and what a process may know of itself.
constexpr int other_calls[] = {
    SCMP_SYS(clock_getres),  SCMP_SYS(clock_gettime), SCMP_SYS(clock_nanosleep), SCMP_SYS(epoll_create),
    SCMP_SYS(epoll_create1), SCMP_SYS(epoll_ctl),     SCMP_SYS(epoll_pwait),     SCMP_SYS(epoll_wait),
    SCMP_SYS(eventfd2),      SCMP_SYS(getegid),       SCMP_SYS(geteuid),         SCMP_SYS(getgid),
    SCMP_SYS(getgroups),     SCMP_SYS(getpgrp),       SCMP_SYS(getpid),          SCMP_SYS(getppid),
    SCMP_SYS(getrandom),     SCMP_SYS(getresgid),     SCMP_SYS(getresuid),       SCMP_SYS(getrlimit),
    SCMP_SYS(getrusage),     SCMP_SYS(gettid),        SCMP_SYS(gettimeofday),    SCMP_SYS(getuid),
    SCMP_SYS(nanosleep),     SCMP_SYS(pipe),          SCMP_SYS(pipe2),           SCMP_SYS(poll),
    SCMP_SYS(ppoll),         SCMP_SYS(pselect6),      SCMP_SYS(select),          SCMP_SYS(sysinfo),
    SCMP_SYS(time),          SCMP_SYS(times),         SCMP_SYS(uname),
};

// No F_SETOWN, which sends signals to others, and no leases, which hold up those who open evidence after us.
constexpr int file_controls[] = {F_DUPFD,     F_DUPFD_CLOEXEC, F_GETFD,     F_SETFD,    F_GETFL,
                                 F_SETFL,     F_GETLK,         F_SETLK,     F_SETLKW,   F_OFD_GETLK,
                                 F_OFD_SETLK, F_OFD_SETLKW,    F_ADD_SEALS, F_GET_SEALS};
// Asking only, and what concerns the descriptor alone: others change a file's flags through a descriptor for reading.
constexpr unsigned long device_controls[] = {TCGETS,  TIOCGWINSZ, FIONREAD,     FIONBIO,
                                             FIOCLEX, FIONCLEX,   BLKGETSIZE64, BLKSSZGET};
constexpr int process_controls[] = {PR_SET_NAME,         PR_GET_NAME,    PR_SET_PDEATHSIG, PR_GET_PDEATHSIG,
                                    PR_GET_NO_NEW_PRIVS, PR_GET_SECCOMP, PR_GET_DUMPABLE,  PR_CAPBSET_READ};

constexpr unsigned int new_namespaces =
    CLONE_NEWNS | CLONE_NEWCGROUP | CLONE_NEWUTS | CLONE_NEWIPC | CLONE_NEWUSER | CLONE_NEWPID | CLONE_NEWNET;
constexpr unsigned int thread_flags = CLONE_THREAD | CLONE_SIGHAND | CLONE_VM;

// The argument's bits under mask are those of value.
scmp_arg_cmp has_bits(unsigned int argument, scmp_datum_t mask, scmp_datum_t value) {
    return {argument, SCMP_CMP_MASKED_EQ, mask, value};
}
scmp_arg_cmp is_int(unsigned int argument, scmp_datum_t value) {
    return has_bits(argument, 0xFFFFFFFF, value & 0xFFFFFFFF);
}

// A filter in the making; error is the first errno value that came up.
class filter_rules {
public:
    filter_rules() : rules(::seccomp_init(SCMP_ACT_ERRNO(EPERM))) {
        if (!rules) {
            error = ENOMEM;
            return;
        }
        set(SCMP_FLTATR_ACT_BADARCH, SCMP_ACT_ERRNO(EPERM)); // another architecture's calls too fail only
        set(SCMP_FLTATR_CTL_OPTIMIZE, 2);                    // a search tree: the list is long
        set(SCMP_FLTATR_API_SYSRAWRC, 1);                    // loading tells the kernel's own error
    }
    template <std::size_t Count>
    void allow_all(const int (&calls)[Count]) {
        for (const int call : calls) {
            allow(call);
        }
    }
    void allow(int call, std::initializer_list<scmp_arg_cmp> conditions = {}) { add(SCMP_ACT_ALLOW, call, conditions); }
    // As a kernel without that call answers; the C library then takes an older one, which can be looked into.
    void hide(int call) { add(SCMP_ACT_ERRNO(ENOSYS), call, {}); }
    int load() {
        keep(error != 0 ? 0 : ::seccomp_load(rules.get()));
        return error;
    }

private:
    struct release {
        void operator()(void* filter) const { ::seccomp_release(filter); }
    };
    void keep(int result) { error = error == 0 ? -result : error; }
    void set(scmp_filter_attr attribute, uint32_t value) { keep(::seccomp_attr_set(rules.get(), attribute, value)); }
    void add(uint32_t action, int call, std::initializer_list<scmp_arg_cmp> conditions) {
        if (error == 0) {
            const auto count = static_cast<unsigned int>(conditions.size());
            keep(::seccomp_rule_add_array(rules.get(), action, call, count, conditions.begin()));
        }
    }

    std::unique_ptr<void, release> rules;
    int error = 0;
};

// Opening for reading must not empty the file, which older versions of Landlock do not see.
void allow_opening(filter_rules& rules, int call, unsigned int flags) {
    rules.allow(call, {has_bits(flags, O_TRUNC, 0)});
    rules.allow(call, {has_bits(flags, O_ACCMODE, O_WRONLY)});
    rules.allow(call, {has_bits(flags, O_ACCMODE, O_RDWR)});
}

// Calls that reach others or change evidence with some arguments only.
void allow_with_conditions(filter_rules& rules) {
    allow_opening(rules, SCMP_SYS(open), 1);
    allow_opening(rules, SCMP_SYS(openat), 2);
    for (const int command : file_controls) {
        rules.allow(SCMP_SYS(fcntl), {is_int(1, static_cast<scmp_datum_t>(command))});
    }
    for (const unsigned long command : device_controls) {
        rules.allow(SCMP_SYS(ioctl), {is_int(1, command)});
    }
    for (const int command : process_controls) {
        rules.allow(SCMP_SYS(prctl), {is_int(0, static_cast<scmp_datum_t>(command))});
    }
    const auto self = static_cast<scmp_datum_t>(::getpid());
    rules.allow(SCMP_SYS(kill), {is_int(0, self)});
    rules.allow(SCMP_SYS(tgkill), {is_int(0, self)});
    rules.allow(SCMP_SYS(prlimit64), {is_int(0, 0)});
    rules.allow(SCMP_SYS(prlimit64), {is_int(0, self)});
    rules.allow(SCMP_SYS(clone), {has_bits(0, thread_flags | new_namespaces, thread_flags)});
}

// Asks for an action that every kernel with filters has.
bool kernel_has_filters() {
    const quint32 action = SECCOMP_RET_ERRNO;
    return ::syscall(SYS_seccomp, SECCOMP_GET_ACTION_AVAIL, 0, &action) == 0 || (errno != ENOSYS && errno != EINVAL);
}

} // namespace

filter_outcome apply_syscall_filter() {
    if (!kernel_has_filters()) {
        return {protection::unavailable, QStringLiteral("the kernel has no filter of system calls")};
    }
    filter_rules rules;
    rules.allow_all(file_calls);
    rules.allow_all(memory_and_thread_calls);
    rules.allow_all(other_calls);
    allow_with_conditions(rules);
    rules.hide(SCMP_SYS(clone3));
    rules.hide(SCMP_SYS(openat2));
    const int error = rules.load();
    if (error != 0) {
        return {protection::failed,
                QStringLiteral("the filter of system calls could not be applied: ") + error_words(error)};
    }
    return {protection::active, {}};
}
