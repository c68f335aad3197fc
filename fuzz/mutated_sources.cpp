// SPDX-License-Identifier: MIT
// mutated_sources [ROUNDS [FOLDER [PROFILES]]]: runs the program over profiles with one mutated file each, ROUNDS of
// each file and way, PROFILES of them (1 if not said) and a sound one a source, and prints what became of them. The
// seeds are fixed.
#include "fuzz/mutated_runs.h"

#include <QCoreApplication>
#include <QTemporaryDir>

#include <cstdio>

int main(int argc, char** argv) {
    const QCoreApplication application(argc, argv);
    const int rounds = argc > 1 ? std::atoi(argv[1]) : 112;
    QTemporaryDir folder;
    const int profiles = argc > 3 ? std::atoi(argv[3]) : 1;
    if (rounds < 1 || profiles < 1 || !folder.isValid()) {
        std::fputs("usage: mutated_sources [ROUNDS [FOLDER [PROFILES]]], with a writable temporary folder\n", stderr);
        return 2;
    }
    const QString place = argc > 2 ? QString::fromLocal8Bit(argv[2]) : folder.path();
    const mutation_result result = run_mutated_sources(
        QCoreApplication::applicationDirPath() + QStringLiteral("/cortana"), place, rounds, profiles);
    std::printf("%-18s %-22s %9s %9s %9s %9s %9s %9s %6s %6s\n", "file", "mutation", "profiles", "same", "same,told",
                "told", "UNTOLD", "unseen", "died", "limits");
    for (const mutation_counts& one : result.counts) {
        std::printf("%-18s %-22s %9d %9d %9d %9d %9d %9d %6d %6d\n", one.file->name, one.how->name, one.profiles,
                    one.same_untold, one.same_told, one.other_told, one.other_untold, one.other_unseen, one.lost,
                    one.over_limits);
    }
    for (const QString& one : result.suspicious) {
        std::printf("%s\n", qPrintable(one));
    }
    std::printf("%d runs; supervisors died: %d; sound profiles with other rows: %d\n", result.runs, result.died,
                result.wrong_sound);
    return 0;
}
