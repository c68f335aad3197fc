// SPDX-License-Identifier: MIT
// Sources in which one file of each profile but one is mutated, run through the program, and what became of them.
#pragma once

#include <QByteArray>
#include <QHash>
#include <QString>
#include <QStringList>

#include <random>
#include <vector>

using random_source = std::mt19937;

// The rows of every table of a result database by profile, each with its table's name in front, keys left out and the
// profile's name replaced. Nothing when the database does not open.
QHash<QString, QStringList> rows_by_profile(const QString& database);

struct mutation {
    const char* name;
    bool mends; // the checksums of what it changes, so that nothing tells of it but what does not fit together
    void (*apply)(QByteArray& file, int page_size, random_source& random);
};
struct mutated_file {
    const char* name;
    const char* below; // the profile
    int page_size;
    bool has_sums; // over every page
};

// Of the profiles with one file mutated in one way.
struct mutation_counts {
    const mutated_file* file = nullptr;
    const mutation* how = nullptr;
    int profiles = 0;
    int same_untold = 0; // rows as those of the sound profile
    int same_told = 0;   // so, but something is reported of the profile
    int other_told = 0;
    int other_untold = 0; // of those, a wrong checksum or a refusal would have had to be told
    int other_unseen = 0; // of those, nothing in the file could tell
    int lost = 0;         // a worker died over it
    int over_limits = 0;  // or passed a limit
};

struct mutation_result {
    std::vector<mutation_counts> counts;
    int runs = 0;
    int died = 0;           // of the supervisor
    int wrong_sound = 0;    // runs in which the sound profile's rows are not those of a clean run
    QStringList suspicious; // seeds to look at
};

// Mutates every kind of file in every way `rounds` times and runs the program over them, so many a source beside a
// sound profile (1 or more), below the folder, which must be empty. Files of suspicious seeds are left there.
mutation_result run_mutated_sources(const QString& program, const QString& folder, int rounds, int mutated_a_source);
