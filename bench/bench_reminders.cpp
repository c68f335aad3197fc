// SPDX-License-Identifier: MIT
// bench_reminders [COUNT...]: the time-reminders step over one profile with 100 to 100,000 reminders (or COUNT each):
// seconds, microseconds a row (by the clock and of the processor) and peak memory. Each size runs in a process of its
// own, so that the memory is its own.
#include "bench/child_process.h"
#include "samples/cortana_core_schema.h"
#include "tests/support/test_support.h"

#include <QApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QFile>

#include <cstdio>
#include <cstdlib>
#include <functional>
#include <sys/resource.h>
#include <unistd.h>

namespace {

std::string trigger_id(int number) {
    return "71a3c0d2-4c1f-9d35-8e1a-" + std::to_string(100000000000 + number);
}

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
    const auto made = [](int number) { return filetime_of(1556704800 + number); };
    write(core_triggers(), [&](int number) {
        return ese_row{trigger_id(number), "5b0e6a7c-" + std::to_string(number), 2, made(number)};
    });
    write(core_reminders(), [&](int number) {
        return ese_row{"5b0e6a7c-" + std::to_string(number),
                       1,
                       0,
                       made(number),
                       made(number),
                       made(number),
                       nullptr,
                       "Reminder number " + std::to_string(number),
                       "Something that is not to be forgotten on that day, "
                       "with a few more words to make it as long as people write"};
    });
    write(core_time_triggers(), [&](int number) {
        return ese_row{trigger_id(number), made(number), 0, "rule", 1, 0, "", "2019-05-01T17:00:00Z"};
    });
    file.close();
}

double processor_seconds() {
    rusage usage{};
    getrusage(RUSAGE_SELF, &usage);
    return static_cast<double>(usage.ru_utime.tv_sec + usage.ru_stime.tv_sec) +
           static_cast<double>(usage.ru_utime.tv_usec + usage.ru_stime.tv_usec) / 1e6;
}

void extract(int count) {
    int argc = 1;
    char name[] = "bench_reminders";
    char* argv[] = {name, nullptr};
    const QApplication application(argc, argv);
    const test_case_folder test_case;
    const QString path = test_case.package_folder(QStringLiteral("anna")) +
                         QStringLiteral("LocalState/ESEDatabase_CortanaCoreInstance/CortanaCoreDb.dat");
    must_run([&] { write_reminders(path, count); });
    const auto front = test_case.make_front();
    front->find_source_file();
    const double processor_before = processor_seconds();
    QElapsedTimer timer;
    timer.start();
    front->extract_timetriggers();
    const double processor = processor_seconds() - processor_before;
    const double seconds = static_cast<double>(timer.nsecsElapsed()) / 1e9;
    must_run([&] {
        if (test_case.dump(QStringLiteral("time_reminders"), {QStringLiteral("bookmark")}).size() != count) {
            _exit(1);
        }
    });
    std::printf("%10d %10.3f %12.1f %12.1f", count, seconds, seconds * 1e6 / count, processor * 1e6 / count);
}

} // namespace

int main(int argc, char** argv) {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QList<int> counts;
    for (int index = 1; index < argc; ++index) {
        counts << std::atoi(argv[index]);
    }
    if (counts.isEmpty()) {
        counts = {100, 1000, 10000, 100000};
    }
    std::printf("%10s %10s %12s %12s %10s\n", "reminders", "seconds", "us a row", "CPU us a row", "peak MB");
    for (const int count : qAsConst(counts)) {
        const double megabytes = must_run([count] { extract(count); }).peak_megabytes;
        std::printf(" %10.1f\n", megabytes);
    }
    return 0;
}
