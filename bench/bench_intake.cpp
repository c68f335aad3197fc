// SPDX-License-Identifier: MIT
// bench_intake SOURCE STAGING: stages every profile of a folder, image or archive into an empty folder and prints what
// that took: time, bytes, and the most memory that was in use, which must not grow with the source.
#include "host/intake/open_source.h"
#include "host/intake/staging.h"

#include <QElapsedTimer>

#include <cstdio>
#include <sys/resource.h>

int main(int argc, char** argv) {
    if (argc != 3) {
        std::fputs("usage: bench_intake SOURCE STAGING\n", stderr);
        return 2;
    }
    QElapsedTimer timer;
    timer.start();
    const intake::opened_source opened = intake::open_source(argv[1], {});
    if (!opened.view) {
        std::fprintf(stderr, "%s: %s\n", argv[1], qPrintable(opened.problem));
        return 1;
    }
    std::printf("opened after       %8.2f s\n", double(timer.elapsed()) / 1000);
    health_report findings;
    const auto profiles = intake::list_profiles(*opened.view, opened.root, findings);
    const auto staged = intake::stage_profiles(*opened.view, opened.root, profiles, argv[2], {}, [] { return false; });
    qint64 bytes = 0;
    for (const intake::staged_entry& entry : staged.entries) {
        bytes += entry.size;
    }
    rusage usage = {};
    ::getrusage(RUSAGE_SELF, &usage);
    std::printf("staged after       %8.2f s\n", double(timer.elapsed()) / 1000);
    std::printf("profiles           %8d\n", profiles.size());
    std::printf("files and folders  %8d\n", staged.entries.size());
    std::printf("bytes              %8.1f MiB\n", double(bytes) / (1 << 20));
    std::printf("problems           %8lld\n", staged.findings.problem_count);
    std::printf("most memory        %8.1f MiB\n", double(usage.ru_maxrss) / 1024);
    for (const finding& one : staged.findings.problems.mid(0, 5)) {
        std::printf("  %s: %s\n", qPrintable(one.path), qPrintable(one.reason));
    }
    return staged.stopped.isEmpty() ? 0 : 1;
}
