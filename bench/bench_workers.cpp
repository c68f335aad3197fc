// SPDX-License-Identifier: MIT
// bench_workers [OTHER_PROGRAM]: whole extractions of 8 profiles of 20,000 web cache entries each, with one worker at a
// time and with two, and of one small profile; beside them OTHER_PROGRAM, a build of another state, if one is given.
// Of each the best of five rounds that take turns, so that a busy machine treats all alike.
#include "bench/child_process.h"
#include "samples/sample_source.h"
#include "samples/webcache_schema.h"

#include <QDir>
#include <QFileInfo>
#include <QTemporaryDir>

#include <algorithm>
#include <cstdio>

namespace {

constexpr int profiles = 8;
constexpr int entries = 20000;
constexpr int rounds = 5;

// About 300 bytes a row in the file.
ese_row entry(int number) {
    const std::int64_t time = 132000000000000000 + number * std::int64_t{10000000};
    const std::string text = std::to_string(1000000 + number);
    return webcache_entry_row({"item" + text + "[1].htm", "https://www.bing.com/search?q=" + text, 1, number,
                               number % 100, time, time + 1, time + 2, time + 3, time + 4},
                              number + 1, 1);
}

void write_profile(const QString& profile) {
    const QString package =
        QStringLiteral("AppData/Local/Packages/Microsoft.Windows.Cortana_cw5n1h2txyewy/AC/INetCache/");
    const QString database = profile + QStringLiteral("/AppData/Local/Microsoft/Windows/WebCache/WebCacheV01.dat");
    QDir().mkpath(profile + QLatin1Char('/') + package + QStringLiteral("ABCD1234"));
    QDir().mkpath(QFileInfo(database).path());
    ese_writer file(QFile::encodeName(database).constData());
    const std::string directory =
        R"(C:\Users\)" + QFileInfo(profile).fileName().toStdString() + "\\" + package.toStdString();
    write_webcache_containers(file, {{1, "Content", directory, "ABCD1234"}});
    file.begin_table("Container_1", webcache_entry_columns());
    for (int number = 0; number < entries; ++number) {
        file.add_row(entry(number));
    }
    file.end_table();
    file.close();
}

// One way to run an extraction, and the best that was seen of it.
struct contender {
    const char* name;
    std::string program;
    std::vector<std::string> options;
    child_figures best;

    void run(const std::string& source, const std::string& result) {
        QDir(QString::fromStdString(result)).removeRecursively();
        std::vector<std::string> words{"extract", "--quiet", source, result};
        words.insert(words.end(), options.begin(), options.end());
        const child_figures figures = run_child(program, words);
        if (figures.succeeded && (!best.succeeded || figures.seconds < best.seconds)) {
            best = figures;
        }
    }
};

void race(std::vector<contender> contenders, const char* what, const std::string& source, const std::string& result) {
    for (int round = 0; round < rounds; ++round) {
        for (contender& one : contenders) {
            one.run(source, result);
        }
    }
    for (const contender& one : contenders) {
        std::printf("%-22s %-16s %8.3f %10.3f %9.2f\n", what, one.name, one.best.seconds, one.best.processor_seconds,
                    contenders.front().best.seconds / one.best.seconds);
    }
    std::fflush(stdout);
}

} // namespace

int main(int argc, char** argv) {
    const QTemporaryDir folder;
    const std::string base = folder.path().toStdString();
    for (int number = 0; number < profiles; ++number) {
        write_profile(folder.path() + QStringLiteral("/many/Users/user%1").arg(number));
    }
    if (!write_sample_source(folder.path() + QStringLiteral("/sample/"))) {
        return 1;
    }
    QDir(folder.path() + QStringLiteral("/sample/Users/bernd")).removeRecursively();
    const auto with_other = [&](std::vector<contender> ours, std::vector<std::string> options) {
        if (argc > 1) {
            ours.push_back({"other program", argv[1], std::move(options), {}});
        }
        return ours;
    };
    std::puts("what                   how               seconds  processor  times as fast as the first");
    race(with_other({{"--jobs 1", HOST_PROGRAM, {"--tables", "cache_files", "--jobs", "1"}, {}},
                     {"--jobs 2", HOST_PROGRAM, {"--tables", "cache_files", "--jobs", "2"}, {}}},
                    {"--tables", "cache_files"}),
         "8 x 20,000 entries", base + "/many", base + "/result");
    race(with_other({{"one worker", HOST_PROGRAM, {}, {}}}, {}), "one sample profile", base + "/sample",
         base + "/result");
    return 0;
}
