// SPDX-License-Identifier: MIT
// How fast a database is checked while its bytes pass by once, alone and together with the SHA-256 of the same chunks.
//
//   bench_health [megabytes [file]]      (500; a database is written for each page size, or the file given is read)
#include "host/health/file_checker.h"
#include "samples/ese_writer.h"
#include "source/quiet_open.h"

#include <openssl/evp.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <functional>

namespace {

constexpr qint64 chunk_size = 1 << 20;
using consumer = std::function<void(const char* bytes, qint64 size)>;

// Seconds that it takes to read the whole file and hand its chunks out; -1: it cannot be read.
double time_of(const quiet_file& file, const consumer& take) {
    QByteArray chunk(static_cast<int>(chunk_size), '\0');
    const auto start = std::chrono::steady_clock::now();
    for (qint64 offset = 0; offset < file.size();) {
        const qint64 got = file.read(chunk.data(), chunk_size, offset);
        if (got <= 0) {
            return -1;
        }
        take(chunk.constData(), got);
        offset += got;
    }
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

// The best of five, in GB/s. Each run has a consumer of its own.
void print_speed(const char* what, const quiet_file& file, const std::function<double()>& run) {
    double best = run();
    for (int i = 0; i < 4; ++i) {
        best = std::min(best, run());
    }
    std::printf("  %-26s %6.2f GB/s  (%.3f s)\n", what, static_cast<double>(file.size()) / 1e9 / best, best);
}

class sha_256 {
public:
    sha_256() : context(EVP_MD_CTX_new(), EVP_MD_CTX_free) { EVP_DigestInit_ex(context.get(), EVP_sha256(), nullptr); }
    void take(const char* bytes, qint64 size) {
        EVP_DigestUpdate(context.get(), bytes, static_cast<std::size_t>(size));
    }

private:
    std::unique_ptr<EVP_MD_CTX, decltype(&EVP_MD_CTX_free)> context;
};

double time_of_check(const quiet_file& file, bool with_sum, file_health& result) {
    const auto checker = ese_database_checker();
    sha_256 sum;
    const double seconds = time_of(file, [&](const char* bytes, qint64 size) {
        checker->take(bytes, size);
        if (with_sum) {
            sum.take(bytes, size);
        }
    });
    const auto start = std::chrono::steady_clock::now();
    result = checker->finish();
    return seconds + std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

void measure(const char* path) {
    const quiet_file file(path, O_RDONLY | O_CLOEXEC);
    if (file.size() <= 0) {
        std::perror(path);
        std::exit(EXIT_FAILURE);
    }
    file_health result;
    print_speed("reading", file, [&] { return time_of(file, [](const char*, qint64) {}); });
    print_speed("reading, check", file, [&] { return time_of_check(file, false, result); });
    print_speed("reading, check, SHA-256", file, [&] { return time_of_check(file, true, result); });
    print_speed("reading, SHA-256", file, [&] {
        sha_256 sum;
        return time_of(file, [&](const char* bytes, qint64 size) { sum.take(bytes, size); });
    });
    if (!result.ese) {
        std::printf("  no ESE database: %s\n", qPrintable(result.problem));
        return;
    }
    const auto number = [](qint64 count) { return static_cast<long long>(count); };
    std::printf("  %lld pages of %u bytes, %lld damaged, %lld unwritten\n", number(result.ese->pages),
                result.ese->page_size, number(result.ese->damaged_pages), number(result.ese->unwritten_pages));
    for (const table_health& table : qAsConst(result.ese->tables)) {
        std::printf("  %s: %lld rows, %lld long value entries\n", qPrintable(table.name), number(table.rows),
                    number(table.long_value_entries));
    }
}

// Rows of some 400 bytes, and a long value with every hundredth.
void write(const std::string& path, std::uint32_t page_size, int megabytes) {
    ese_writer file(path, page_size);
    file.begin_table("Bench", {{0, "Id", ese_type::signed_64, {}, 0}, {0, "Text", ese_type::large_binary, {}, 0}});
    const int rows = megabytes * 2000;
    for (int i = 0; i < rows; ++i) {
        const std::size_t size = i % 100 == 0 ? 10000 : 350;
        file.add_row({i, ese_value::bytes(std::string(size, static_cast<char>(i)))});
    }
    file.end_table();
    file.close();
}

} // namespace

int main(int argc, char** argv) {
    const int megabytes = argc > 1 ? std::max(1, std::atoi(argv[1])) : 500;
    if (argc > 2) {
        measure(argv[2]);
        return EXIT_SUCCESS;
    }
    const std::string path = std::filesystem::temp_directory_path() / "bench_health.edb";
    for (const std::uint32_t page_size : {4096U, 8192U, 16384U, 32768U}) {
        write(path, page_size, megabytes);
        std::printf("pages of %u bytes\n", page_size);
        measure(path.c_str());
    }
    std::error_code ignored;
    std::filesystem::remove(path, ignored);
    return EXIT_SUCCESS;
}
