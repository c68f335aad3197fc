// SPDX-License-Identifier: MIT
// bench_reminders [COUNT...]: the time_reminders step over one profile with 2,000, 10,000 and 100,000 reminders (or
// COUNT each), beside the least it could cost. Seconds are of the step alone, memory of its whole process; each figure
// is of the process that took least of the processor among several.
#include "bench/child_process.h"
#include "bench/reminders_floor.h"
#include "samples/cortana_core_schema.h"
#include "tests/support/test_support.h"

#include <QApplication>
#include <QDir>
#include <QFile>

#include <cstdio>
#include <cstdlib>
#include <functional>
#include <random>
#include <unistd.h>

namespace {

// Texts as people leave them: their lengths differ, and so do those of ids from one version to the next.
class made_texts {
public:
    std::string text(int least, int most) {
        static const char* const words[] = {"call",  "the", "dentist", "about", "next", "Tuesday's", "Überweisung",
                                            "milk,", "and", "bring",   "a",     "cake", "for",       "Zoë"};
        const auto length = static_cast<std::size_t>(between(least, most));
        std::string result;
        while (result.size() < length) {
            result += std::string(words[between(0, 13)]) + ' ';
        }
        return result;
    }
    std::string id(int number) {
        char digits[80];
        switch (number % 4) {
        case 0:
            std::snprintf(digits, sizeof(digits), "%d", number);
            break;
        case 1:
            std::snprintf(digits, sizeof(digits), "Reminder_%08x_%d", between(0, 1 << 30), number);
            break;
        default:
            std::snprintf(digits, sizeof(digits), "{%08x-%04x-4c1f-9d35-%012d}", between(0, 1 << 30), between(0, 65535),
                          number);
        }
        return digits;
    }
    std::string last_trigger() {
        char time[32];
        std::snprintf(time, sizeof(time), "20%02d-%02d-%02dT%02d:%02d:%02dZ", between(15, 23), between(1, 12),
                      between(1, 28), between(0, 23), between(0, 59), between(0, 59));
        return between(0, 4) == 0 ? "" : time;
    }

private:
    int between(int least, int most) { return std::uniform_int_distribution<int>(least, most)(numbers); }
    std::minstd_rand numbers;
};

void write_reminders(const QString& path, int count) {
    QDir().mkpath(QFileInfo(path).path());
    ese_writer file(QFile::encodeName(path).constData());
    const auto write = [&](const core_table& table, const std::function<ese_row(int)>& row) {
        file.begin_table(table.name, table.columns);
        for (int number = 0; number < count; ++number) {
            file.add_row(row(number));
        }
        file.end_table();
    };
    made_texts texts;
    std::vector<std::string> ids;
    for (int number = 0; number < count; ++number) {
        ids.push_back(texts.id(number));
    }
    const auto id_of = [&](int number) { return ids[static_cast<std::size_t>(number)]; };
    const auto made = [](int number) { return filetime_of(1556704800 + number); };
    write(core_triggers(), [&](int number) { return ese_row{id_of(number), texts.id(number), 2, made(number)}; });
    write(core_reminders(), [&](int number) {
        return ese_row{texts.id(number),  1, 0, made(number), made(number), made(number), nullptr, texts.text(5, 75),
                       texts.text(0, 295)};
    });
    write(core_time_triggers(), [&](int number) {
        return ese_row{id_of(number), made(number), 0, texts.id(number), 1, 0, "", texts.last_trigger()};
    });
    file.close();
}

struct bench_case {
    test_case_folder folder;
    QString database = folder.package_folder(QStringLiteral("anna")) +
                       QStringLiteral("LocalState/ESEDatabase_CortanaCoreInstance/CortanaCoreDb.dat");
};

child_figures extraction(const bench_case& made) {
    std::unique_ptr<QApplication> application;
    std::unique_ptr<cortana_winos> front;
    int argc = 1;
    char name[] = "bench_reminders";
    char* argv[] = {name, nullptr};
    const auto prepare = [&] {
        application = std::make_unique<QApplication>(argc, argv);
        front = made.folder.make_front();
        front->find_source_file();
    };
    return run_measured(prepare, [&] { front->extract_timetriggers(); });
}

child_figures floor(const bench_case& made) {
    return run_measured([] {},
                        [&] {
                            if (run_reminders_floor(QFile::encodeName(made.database).constData(),
                                                    QFile::encodeName(made.folder.database_path()).constData()) < 0) {
                                ::_exit(1);
                            }
                        });
}

void print(const char* what, const child_figures& figures, int count, const child_figures& compared) {
    std::printf("%9d  %-14s %8.3f %10.3f %11.1f %10.0f %8.2f\n", count, what, figures.seconds,
                figures.processor_seconds, figures.processor_seconds * 1e6 / count, figures.peak_megabytes,
                compared.processor_seconds / figures.processor_seconds);
    std::fflush(stdout);
}

// Each round with a result database of its own; false when the rows are not as many as the reminders.
bool measure(int count) {
    bench_case made;
    must_run([&] { write_reminders(made.database, count); });
    const auto with_empty_result = [&](child_figures (*run)(const bench_case&)) {
        return best_of(count > 20000 ? 3 : 7, [&] {
            must_run([&] { made.folder.execute(QStringLiteral("delete from time_reminders")); });
            return run(made);
        });
    };
    const child_figures least = with_empty_result(floor);
    const child_figures step = with_empty_result(extraction);
    print("time_reminders", step, count, step);
    print("floor", least, count, step);
    const bool all_rows = run_work([&] {
                              const auto rows =
                                  made.folder.dump(QStringLiteral("time_reminders"), {QStringLiteral("bookmark")});
                              ::_exit(rows.size() == count ? 0 : 1);
                          }).succeeded;
    return least.succeeded && step.succeeded && all_rows;
}

} // namespace

int main(int argc, char** argv) {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    std::vector<int> counts;
    for (int index = 1; index < argc; ++index) {
        counts.push_back(std::atoi(argv[index]));
    }
    if (counts.empty()) {
        counts = {2000, 10000, 100000};
    }
    std::puts("reminders  what            seconds  processor  us of it a    peak MB  time_reminders");
    std::puts("                                      seconds         row             is so many times");
    bool measured = true;
    for (const int count : counts) {
        measured = measure(count) && measured;
    }
    return measured ? 0 : 1;
}
