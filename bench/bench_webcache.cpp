// SPDX-License-Identifier: MIT
// bench_webcache [entries ...]: cache_files from WebCache databases of 10,000, 100,000 and 1,000,000 entries (or of the
// given numbers), beside the least it could cost and beside esedbexport, which writes text and no database. Each figure
// is of the process that took least of the processor among several; times include the start of the process.
#include "bench/bench_front.h"
#include "bench/child_process.h"
#include "bench/webcache_floor.h"
#include "samples/webcache_schema.h"

#include <QApplication>
#include <QDir>
#include <QFileInfo>
#include <QTemporaryDir>

#include <cstdio>
#include <filesystem>

namespace {

const QString package = QStringLiteral("AppData/Local/Packages/Microsoft.Windows.Cortana_cw5n1h2txyewy/AC/INetCache/");

struct bench_files {
    explicit bench_files(const QString& folder)
        : root(folder + QStringLiteral("/source/")), profile(root + QStringLiteral("Users/anna/")),
          database(profile + QStringLiteral("AppData/Local/Microsoft/Windows/WebCache/WebCacheV01.dat")),
          result(folder + QStringLiteral("/Cortana.sqlite")), exported(folder + QStringLiteral("/exported")) {}
    QString root, profile, database, result, exported;
};

// All 25 columns have values, about 390 bytes a row in the file.
ese_row bench_row(int number) {
    const std::int64_t time = 132000000000000000 + number * std::int64_t{10000000};
    const std::string text = std::to_string(1000000 + number);
    ese_row row = webcache_entry_row({"item" + text + "[1].htm", "https://www.bing.com/search?q=" + text, number % 5,
                                      number, number % 100, time, time + 1, time + 2, time + 3, time + 4},
                                     number + 1, 1);
    row.at(19) = "htm";
    row.at(20) = ese_value::bytes("GET");
    row.insert(row.end(), {"", "bing", ese_value::bytes(std::string(8, '\x11'))});
    return row;
}

int write_evidence(const bench_files& files, int entries) {
    for (const char* secure : {"ABCD1234", "EFGH5678", "IJKL9012", "MNOP3456"}) {
        QDir().mkpath(files.profile + package + QLatin1String(secure));
    }
    QDir().mkpath(QFileInfo(files.database).path());
    ese_writer file(QFile::encodeName(files.database).constData());
    const std::string directory = R"(C:\Users\anna\)" + package.toStdString();
    write_webcache_containers(file, {{1, "Content", directory, "ABCD1234EFGH5678IJKL9012MNOP3456"}});
    file.begin_table("Container_1", webcache_entry_columns());
    for (int number = 0; number < entries; ++number) {
        file.add_row(bench_row(number));
    }
    file.end_table();
    file.close();
    return 0;
}

void print(const char* what, const child_figures& figures, int entries, const child_figures& compared) {
    if (!figures.succeeded) {
        std::printf("%9d  %-12s did not run\n", entries, what);
        return;
    }
    std::printf("%9d  %-12s %8.2f %10.2f %11.1f %10.0f %8.2f\n", entries, what, figures.seconds,
                figures.processor_seconds, figures.processor_seconds * 1e6 / entries, figures.peak_megabytes,
                compared.processor_seconds / figures.processor_seconds);
}

// Returns false when a child failed.
bool measure(int entries) {
    QTemporaryDir folder;
    const bench_files files(folder.path());
    const std::string path = folder.path().toStdString();
    if (!run_self({"write", path, std::to_string(entries)}).succeeded) {
        return false;
    }
    const int rounds = entries > 300000 ? 2 : 5;
    const auto into_fresh_result = [&](const char* role) {
        return run_self({"result", path}).succeeded ? run_self({role, path}) : child_figures();
    };
    const child_figures extraction = best_of(rounds, [&] { return into_fresh_result("extract"); });
    const child_figures floor = best_of(rounds, [&] { return into_fresh_result("floor"); });
    const child_figures exported = best_of(rounds, [&] {
        QDir(files.exported + QStringLiteral(".export")).removeRecursively();
        return run_child(QFile::exists(QStringLiteral(ESEDBEXPORT)) ? ESEDBEXPORT : "esedbexport",
                         {"-T", "Container_1", "-t", files.exported.toStdString(), files.database.toStdString()});
    });
    print("cache_files", extraction, entries, extraction);
    print("floor", floor, entries, extraction);
    print("esedbexport", exported, entries, extraction);
    std::fflush(stdout);
    return extraction.succeeded && floor.succeeded;
}

int run_role(const std::string& role, const bench_files& files, const char* number) {
    if (role == "write") {
        return write_evidence(files, std::atoi(number));
    }
    if (role == "result") {
        return make_result_database(files.result) ? 0 : 1;
    }
    if (role == "extract") {
        return extract_table(QStringLiteral("cache_files"), files.root, files.result) > 0 ? 0 : 1;
    }
    return run_webcache_floor(QFile::encodeName(files.database).constData(),
                              QFile::encodeName(files.result).constData()) > 0
               ? 0
               : 1;
}

} // namespace

int main(int argc, char** argv) {
    const std::string role = argc > 2 ? argv[1] : "";
    if (role == "write" || role == "result" || role == "extract" || role == "floor") {
        qputenv("QT_QPA_PLATFORM", "offscreen");
        QApplication application(argc, argv);
        return run_role(role, bench_files(QFile::decodeName(argv[2])), argc > 3 ? argv[3] : "0");
    }
    std::vector<int> numbers;
    for (int index = 1; index < argc; ++index) {
        numbers.push_back(std::atoi(argv[index]));
    }
    if (numbers.empty()) {
        numbers = {10000, 100000, 1000000};
    }
    std::puts("  entries  what          seconds  processor  us of it a    peak MB  cache_files is");
    std::puts("                                   seconds         row             so many times");
    bool measured = true;
    for (const int entries : numbers) {
        measured = measure(entries) && measured;
    }
    return measured ? 0 : 1;
}
