// SPDX-License-Identifier: MIT
// fork, exec, wait4. The parent must stay small: a child's peak counts from what it was forked as.
#include "bench/child_process.h"

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <fcntl.h>
#include <new>
#include <sys/mman.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {

double seconds_of(const timeval& time) {
    return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_usec) / 1e6;
}

using clock_time = std::chrono::steady_clock::time_point;

double seconds_since(clock_time start) {
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

// Of this process.
double processor_seconds() {
    rusage used = {};
    ::getrusage(RUSAGE_SELF, &used);
    return seconds_of(used.ru_utime) + seconds_of(used.ru_stime);
}

child_figures figures_of(pid_t child, clock_time start) {
    child_figures figures;
    int status = 0;
    rusage used = {};
    if (child > 0 && ::wait4(child, &status, 0, &used) == child) {
        figures.succeeded = WIFEXITED(status) && WEXITSTATUS(status) == 0;
    }
    figures.seconds = seconds_since(start);
    figures.processor_seconds = seconds_of(used.ru_utime) + seconds_of(used.ru_stime);
    figures.peak_megabytes = static_cast<double>(used.ru_maxrss) / 1024;
    return figures;
}

} // namespace

child_figures run_child(const std::string& program, const std::vector<std::string>& arguments) {
    std::vector<std::string> texts{program};
    texts.insert(texts.end(), arguments.begin(), arguments.end());
    std::vector<char*> pointers;
    for (std::string& text : texts) {
        pointers.push_back(text.data());
    }
    pointers.push_back(nullptr);
    const auto start = std::chrono::steady_clock::now();
    const pid_t child = ::fork();
    if (child == 0) {
        const int nowhere = ::open("/dev/null", O_WRONLY);
        ::dup2(nowhere, STDOUT_FILENO);
        ::execvp(pointers.front(), pointers.data());
        ::_exit(127);
    }
    return figures_of(child, start);
}

child_figures run_self(const std::vector<std::string>& arguments) {
    return run_child("/proc/self/exe", arguments);
}

child_figures run_work(const std::function<void()>& work) {
    std::fflush(stdout);
    const auto start = std::chrono::steady_clock::now();
    const pid_t child = ::fork();
    if (child == 0) {
        work();
        std::fflush(stdout);
        ::_exit(0);
    }
    return figures_of(child, start);
}

child_figures run_measured(const std::function<void()>& prepare, const std::function<void()>& work) {
    // The child's own look at its clocks; memory that it shares with this process brings it here.
    void* const shared =
        ::mmap(nullptr, sizeof(child_figures), PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0);
    if (shared == MAP_FAILED) {
        return {};
    }
    auto* const measured = new (shared) child_figures;
    child_figures figures = run_work([&] {
        prepare();
        const auto start = std::chrono::steady_clock::now();
        const double processor_before = processor_seconds();
        work();
        measured->seconds = seconds_since(start);
        measured->processor_seconds = processor_seconds() - processor_before;
    });
    figures.seconds = measured->seconds;
    figures.processor_seconds = measured->processor_seconds;
    ::munmap(shared, sizeof(child_figures));
    return figures;
}

child_figures must_run(const std::function<void()>& work) {
    const child_figures figures = run_work(work);
    if (!figures.succeeded) {
        std::fputs("a child process of the benchmark failed\n", stderr);
        std::exit(1);
    }
    return figures;
}

child_figures best_of(int rounds, const std::function<child_figures()>& run) {
    child_figures best = run();
    for (int round = 1; round < rounds && best.succeeded; ++round) {
        const child_figures figures = run();
        if (!figures.succeeded || figures.processor_seconds < best.processor_seconds) {
            best = figures;
        }
    }
    return best;
}
