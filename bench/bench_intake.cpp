// SPDX-License-Identifier: MIT
// bench_intake: a source of two profiles as folder and as images of 2 and 16 GB, extracted by the whole program, beside
// cp; then the staging of each alone, whose memory must not grow with the image.
// bench_intake SOURCE STAGING: stages every profile of a folder, image or archive into an empty folder and prints what
// that took: time, bytes, and the most memory that was in use.
#include "bench/child_process.h"
#include "host/intake/open_source.h"
#include "host/intake/staging.h"
#include "samples/sample_source.h"
#include "samples/webcache_schema.h"
#include "tests/intake/ntfs_image.h"

#include <QDir>
#include <QElapsedTimer>
#include <QTemporaryDir>

#include <cstdio>
#include <sys/resource.h>

namespace {

constexpr int entries = 50000;
constexpr int cached_files = 400;
constexpr int bytes_a_file = 100000;
constexpr int rounds = 3;

// Beside the sample's own evidence: a large web cache, and cached files of which every other one is there.
void enlarge(const sample_profile& profile) {
    const QString directory = QStringLiteral("AC/INetCache/ABCD1234/");
    QDir().mkpath(profile.package_folder() + directory);
    for (int number = 0; number < cached_files; ++number) {
        QFile file(profile.package_folder() + directory + QStringLiteral("item%1.htm").arg(2 * number));
        file.open(QIODevice::WriteOnly);
        file.write(QByteArray(bytes_a_file, static_cast<char>('a' + number % 20)));
    }
    const QString database =
        profile.folder() + QStringLiteral("AppData/Local/Microsoft/Windows/WebCache/WebCacheV01.dat");
    ese_writer file(QFile::encodeName(database).constData());
    const std::string package = R"(AppData\Local\Packages\Microsoft.Windows.Cortana_cw5n1h2txyewy\AC\INetCache\)";
    write_webcache_containers(
        file, {{1, "Content", R"(C:\Users\)" + profile.user.toStdString() + "\\" + package, "ABCD1234"}});
    file.begin_table("Container_1", webcache_entry_columns());
    for (int number = 0; number < entries; ++number) {
        webcache_entry entry;
        entry.filename = "item" + std::to_string(number) + ".htm";
        entry.url = "https://www.bing.com/search?q=" + std::to_string(number);
        entry.secure_directory = 1;
        file.add_row(webcache_entry_row(entry, number + 1, 1));
    }
    file.end_table();
    file.close();
}

void print(const char* what, const child_figures& figures) {
    std::printf("%-28s %8.2f %10.2f %9.1f%s\n", what, figures.seconds, figures.processor_seconds,
                figures.peak_megabytes, figures.succeeded ? "" : "  FAILED");
    std::fflush(stdout);
}

child_figures extract(const std::string& source, const std::string& result) {
    return best_of(rounds, [&] {
        QDir(QString::fromStdString(result)).removeRecursively();
        return run_child(HOST_PROGRAM, {"extract", "--quiet", source, result});
    });
}

int race() {
    const QTemporaryDir folder;
    const std::string base = folder.path().toStdString();
    const QString source = folder.path() + QStringLiteral("/source/");
    if (!write_sample_source(source)) {
        return 1;
    }
    enlarge({source, QStringLiteral("anna"), 0});
    enlarge({source, QStringLiteral("bernd"), 1});
    for (const int gibibytes : {2, 16}) {
        const QByteArray image = folder.path().toUtf8() + '/' + QByteArray::number(gibibytes);
        must_run([&] { write_ntfs_image(image, gibibytes * 1024, source.toUtf8()); });
    }
    std::puts("what                          seconds  processor  peak MB of the largest process");
    const child_figures from_folder = extract(base + "/source", base + "/result");
    const child_figures copying = best_of(rounds, [&] {
        QDir(folder.path() + QStringLiteral("/copy")).removeRecursively();
        return run_child("cp", {"-r", base + "/source", base + "/copy"});
    });
    const child_figures from_image = extract(base + "/2", base + "/result");
    print("extract, folder", from_folder);
    print("cp -r of the folder", copying);
    print("extract, image of 2 GB", from_image);
    print("extract, image of 16 GB", extract(base + "/16", base + "/result"));
    std::printf("image of 2 GB / (folder + cp)   %.2f of seconds, %.2f of processor seconds\n",
                from_image.seconds / (from_folder.seconds + copying.seconds),
                from_image.processor_seconds / (from_folder.processor_seconds + copying.processor_seconds));
    for (const char* const name : {"/source", "/2", "/16"}) {
        QDir().mkpath(folder.path() + QStringLiteral("/staged"));
        print((std::string("staging alone, ") + name).c_str(), run_self({base + name, base + "/staged"}));
        QDir(folder.path() + QStringLiteral("/staged")).removeRecursively();
    }
    return 0;
}

int stage(const char* source, const char* staging) {
    QElapsedTimer timer;
    timer.start();
    const intake::opened_source opened = intake::open_source(source, {});
    if (!opened.view) {
        std::fprintf(stderr, "%s: %s\n", source, qPrintable(opened.problem));
        return 1;
    }
    std::printf("opened after       %8.2f s\n", double(timer.elapsed()) / 1000);
    health_report findings;
    const auto profiles = intake::list_profiles(*opened.view, opened.root, findings);
    const auto staged = intake::stage_profiles(*opened.view, opened.root, profiles, staging, {}, [] { return false; });
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
    std::printf("problems           %8lld\n", static_cast<long long>(staged.findings.problem_count));
    std::printf("most memory        %8.1f MiB\n", double(usage.ru_maxrss) / 1024);
    for (const finding& one : staged.findings.problems.mid(0, 5)) {
        std::printf("  %s: %s\n", qPrintable(one.path), qPrintable(one.reason));
    }
    return staged.stopped.isEmpty() ? 0 : 1;
}

} // namespace

int main(int argc, char** argv) {
    if (argc != 1 && argc != 3) {
        std::fputs("usage: bench_intake [SOURCE STAGING]\n", stderr);
        return 2;
    }
    return argc == 1 ? race() : stage(argv[1], argv[2]);
}
