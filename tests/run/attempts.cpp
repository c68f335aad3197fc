// SPDX-License-Identifier: MIT
// Each attempt succeeds where nothing keeps it from doing so; a call that the kernel only finds fault with got through.
#include "tests/run/attempts.h"

#include "tests/support/test_text.h"

#include <QFile>
#include <QTimeZone>

#include <arpa/inet.h>
#include <cerrno>
#include <dirent.h>
#include <fcntl.h>
#include <linux/fs.h>
#include <mutex>
#include <sys/file.h>
#include <sys/ioctl.h>
#include <sys/mman.h>
#include <sys/mount.h>
#include <sys/prctl.h>
#include <sys/ptrace.h>
#include <sys/resource.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <sys/uio.h>
#include <sys/wait.h>
#include <sys/xattr.h>
#include <thread>
#include <unistd.h>

namespace {

int answer(long result) {
    return result < 0 ? errno : 0;
}
// For calls that cannot succeed with the arguments given: only a refusal counts.
int reached(long result) {
    return result < 0 && (errno == EPERM || errno == EACCES) ? errno : 0;
}
int opened(const char* path, int flags) {
    return answer(::open(path, flags | O_CLOEXEC, 0600));
}
int source_handle() {
    return ::open("source/file", O_RDONLY | O_CLOEXEC);
}

int start_process(long child) {
    if (child == 0) {
        ::_exit(0);
    }
    const int error = child < 0 ? errno : 0;
    ::waitpid(static_cast<pid_t>(child), nullptr, 0); // refused too, which must not pass for the refusal in question
    return error;
}

int reach_by_tcp(int (*call)(int, const sockaddr*, socklen_t)) {
    sockaddr_in address = {};
    address.sin_family = AF_INET;
    address.sin_port = htons(1); // nobody listens there, which is not for us to find out
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    const int handle = ::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
    return handle < 0 ? errno : reached(call(handle, reinterpret_cast<const sockaddr*>(&address), sizeof(address)));
}

int read_memory_of_parent() {
    char byte = 0;
    const iovec here = {&byte, 1};
    const iovec there = {nullptr, 1};
    return reached(::process_vm_readv(::getppid(), &here, 1, &there, 1, 0));
}

int run_program() {
    char* const words[] = {nullptr};
    char* const variables[] = {nullptr};
    return reached(::execve("source/program", words, variables)); // it is no real program
}

int set_flags() {
    int flags = 0;
    return reached(::ioctl(source_handle(), FS_IOC_SETFLAGS, &flags)); // not every file system has them
}

// What SQLite and Qt do in their own folder.
int work_in_output() {
    struct flock lock = {};
    lock.l_type = F_WRLCK;
    const bool is_made = ::mkdir("output/folder", 0700) == 0;
    const int handle = ::open("output/folder/file", O_RDWR | O_CREAT | O_TRUNC | O_CLOEXEC, 0600);
    const bool is_done = is_made && ::write(handle, "x", 1) == 1 && ::fcntl(handle, F_SETLK, &lock) == 0 &&
                         ::flock(handle, LOCK_EX | LOCK_NB) == 0 && ::ftruncate(handle, 9) == 0 &&
                         ::fsync(handle) == 0 && ::fdatasync(handle) == 0 &&
                         ::rename("output/folder/file", "output/other") == 0 && ::unlink("output/other") == 0 &&
                         ::rmdir("output/folder") == 0;
    return is_done ? 0 : errno;
}

int read_quietly() {
    struct statx status = {};
    char byte = 0;
    const int handle = ::open("source/file", O_RDONLY | O_NOATIME | O_CLOEXEC);
    const bool is_done = ::pread(handle, &byte, 1, 0) == 1 && byte == 'x' &&
                         ::statx(handle, "", AT_EMPTY_PATH, STATX_ALL, &status) == 0 &&
                         ::flistxattr(handle, nullptr, 0) == 0 && ::fgetxattr(handle, "user.none", nullptr, 0) < 0 &&
                         errno != EPERM;
    return is_done ? 0 : errno;
}

int use_memory_and_threads() {
    const int handle = ::memfd_create("memory", MFD_CLOEXEC);
    void* const memory = ::ftruncate(handle, 4096) == 0
                             ? ::mmap(nullptr, 4096, PROT_READ | PROT_WRITE, MAP_SHARED, handle, 0)
                             : MAP_FAILED;
    if (memory == MAP_FAILED) {
        return errno;
    }
    std::mutex held;
    held.lock();
    std::thread waiting([&] {
        const std::lock_guard<std::mutex> wait(held);
        *static_cast<char*>(memory) = 'x';
    });
    held.unlock();
    waiting.join();
    return *static_cast<char*>(memory) == 'x' ? answer(::prctl(PR_SET_NAME, "named")) : EFAULT;
}

int copy_file() {
    return QFile::copy("source/file"_q, "output/copy"_q) ? 0 : EIO;
}

QVector<attempt> attempts_at_files() {
    return {
        {"write into a file", 1, false, false, [] { return opened("source/file", O_WRONLY); }},
        {"make a file", 1, false, false, [] { return opened("source/x", O_WRONLY | O_CREAT); }},
        {"make a file beside", 1, false, false, [] { return opened("x", O_WRONLY | O_CREAT); }},
        {"make a folder", 1, false, false, [] { return answer(::mkdir("source/x", 0700)); }},
        {"make a pipe", 1, true, false, [] { return answer(::mkfifo("source/x", 0600)); }},
        {"make a link", 1, true, false, [] { return answer(::symlink("file", "source/x")); }},
        {"link into output", 1, false, false,
         [] { return answer(::linkat(AT_FDCWD, "source/file", AT_FDCWD, "output/x", 0)); }},
        {"remove a file", 1, false, false, [] { return answer(::unlink("source/file")); }},
        {"remove a folder", 1, false, false, [] { return answer(::rmdir("source/folder")); }},
        {"rename", 1, false, false, [] { return answer(::rename("source/file", "source/x")); }},
        {"move into output", 1, false, false, [] { return answer(::rename("source/file", "output/x")); }},
        {"truncate", 3, true, false, [] { return answer(::truncate("source/file", 0)); }},
        {"truncate by reading", 3, true, false, [] { return opened("source/file", O_RDONLY | O_TRUNC); }},
        {"change the mode", 0, true, false, [] { return answer(::chmod("source/file", 0777)); }},
        {"change the mode, opened", 0, true, false, [] { return answer(::fchmod(source_handle(), 0777)); }},
        {"change the owner", 0, true, false, [] { return answer(::chown("source/file", ::getuid(), ::getgid())); }},
        {"change the times", 0, true, false, [] { return answer(::utimensat(AT_FDCWD, "source/file", nullptr, 0)); }},
        {"change the times, opened", 0, true, false, [] { return answer(::futimens(source_handle(), nullptr)); }},
        {"add an attribute", 0, true, false, [] { return reached(::setxattr("source/file", "user.x", "x", 1, 0)); }},
        {"change the flags", 0, true, true, set_flags},
        {"take a lease", 0, true, false, [] { return answer(::fcntl(source_handle(), F_SETLEASE, F_RDLCK)); }},
        {"read outside", 1, false, false, [] { return opened("outside/secret", O_RDONLY); }},
        {"read through a link", 1, false, false, [] { return opened("source/out", O_RDONLY); }},
        {"read by climbing", 1, false, false, [] { return opened("source/../outside/secret", O_RDONLY); }},
        {"list outside", 1, false, false, [] { return opened("outside", O_RDONLY | O_DIRECTORY); }},
    };
}

QVector<attempt> attempts_at_others() {
    return {
        {"fork", 0, true, false, [] { return start_process(::fork()); }},
        {"clone with the same memory", 0, true, false,
         [] { return start_process(::syscall(SYS_clone, CLONE_FILES | SIGCHLD, 0, 0, 0, 0)); }},
        {"exec", 1, true, false, run_program},
        {"connect", 4, true, false, [] { return reach_by_tcp(::connect); }},
        {"listen", 4, true, true, [] { return reach_by_tcp(::bind); }},
        {"local socket", 0, true, false, [] { return answer(::socket(AF_UNIX, SOCK_STREAM, 0)); }},
        {"signal the parent", 6, true, false, [] { return answer(::kill(::getppid(), 0)); }},
        {"signal the group", 0, true, false, [] { return answer(::kill(0, 0)); }},
        {"signal the parent by a file", 0, true, false,
         [] { return answer(::fcntl(source_handle(), F_SETOWN, ::getppid())); }},
        {"limits of the parent", 0, true, false,
         [] {
             rlimit limit = {};
             return answer(::prlimit(::getppid(), RLIMIT_NOFILE, nullptr, &limit));
         }},
        {"memory of the parent", 1, true, true, read_memory_of_parent},
        {"be traced", 0, true, false, [] { return answer(::ptrace(PTRACE_TRACEME, 0, nullptr, nullptr)); }},
        {"mount", 1, true, true, [] { return reached(::mount("none", "source", "no such type", 0, nullptr)); }},
    };
}

// Refused whatever the arguments are.
QVector<attempt> attempts_at_the_kernel() {
    const std::pair<const char*, long> calls[] = {{"bpf", SYS_bpf},
                                                  {"keyctl", SYS_keyctl},
                                                  {"io_uring_setup", SYS_io_uring_setup},
                                                  {"userfaultfd", SYS_userfaultfd},
                                                  {"perf_event_open", SYS_perf_event_open},
                                                  {"open_by_handle_at", SYS_open_by_handle_at},
                                                  {"pidfd_open", SYS_pidfd_open},
                                                  {"rt_sigqueueinfo", SYS_rt_sigqueueinfo},
                                                  {"unshare", SYS_unshare},
                                                  {"setns", SYS_setns},
                                                  {"chroot", SYS_chroot},
                                                  {"init_module", SYS_init_module},
                                                  {"no such call", 100000}};
    QVector<attempt> attempts;
    for (const auto& [name, number] : calls) {
        const long call = number;
        attempts.append({name, 0, true, true, [call] { return reached(::syscall(call, -1, 0, 0, 0, 0, 0)); }});
    }
    return attempts;
}

QVector<attempt> allowed_work() {
    return {
        {"work in output", 0, false, false, work_in_output},
        {"read quietly", 0, false, false, read_quietly},
        {"memory and threads", 0, false, false, use_memory_and_threads},
        {"copy a file", 0, false, false, copy_file},
        {"time zones", 0, false, false, [] { return QTimeZone("Europe/Berlin").isValid() ? 0 : EIO; }},
        {"signal itself", 0, false, false, [] { return answer(::kill(::getpid(), 0)); }},
    };
}

} // namespace

const QVector<attempt>& all_attempts() {
    static const QVector<attempt> attempts =
        attempts_at_files() + attempts_at_others() + attempts_at_the_kernel() + allowed_work();
    return attempts;
}
