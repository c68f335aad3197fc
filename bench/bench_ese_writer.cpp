// SPDX-License-Identifier: MIT
// How fast ESE files are written, and how fast libesedb reads them back.
//
//   bench_ese_writer [rows [page size [file]]]      (1000000 rows, 32768 bytes; the file is removed unless named)
#include "ese/ese_handles.h"
#include "samples/ese_writer.h"

#include <sys/resource.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>

namespace {

class stopwatch {
public:
    double seconds() const { return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count(); }

private:
    std::chrono::steady_clock::time_point start = std::chrono::steady_clock::now();
};

double peak_megabytes() {
    rusage usage{};
    getrusage(RUSAGE_SELF, &usage);
    return static_cast<double>(usage.ru_maxrss) / 1024;
}

// Twenty-five columns like those of a browser cache: numbers, times, an URL, names and a blob.
std::vector<ese_column> columns() {
    std::vector<ese_column> result;
    const auto add = [&result](int count, ese_type type, ese_code_page code_page = ese_code_page::none) {
        for (int i = 0; i < count; ++i) {
            result.push_back({0, "column_" + std::to_string(result.size() + 1), type, code_page, 0});
        }
    };
    add(8, ese_type::signed_64);
    add(5, ese_type::date_time);
    add(4, ese_type::unsigned_32);
    add(2, ese_type::float_64);
    add(1, ese_type::binary);
    add(3, ese_type::large_text, ese_code_page::utf_16);
    add(1, ese_type::large_text, ese_code_page::windows_1252);
    add(1, ese_type::large_binary);
    return result;
}

void fill(ese_row& row, int number) {
    const std::string digits = std::to_string(1000000 + number);
    row.clear();
    for (int i = 0; i < 17; ++i) {
        row.emplace_back(number + i);
    }
    row.emplace_back(48.25 + number);
    row.emplace_back(11.5);
    row.push_back(ese_value::bytes("0123456789abcdef"));
    row.emplace_back("https://www.example.org/" + digits);
    row.emplace_back("file-" + digits);
    row.emplace_back(nullptr);
    row.emplace_back("text/html; charset=utf-8");
    row.push_back(ese_value::bytes(std::string(86, static_cast<char>(number))));
}

void write(const std::string& path, std::uint32_t page_size, int rows) {
    const stopwatch watch;
    ese_writer file(path, page_size);
    file.begin_table("Bench", columns());
    ese_row row;
    for (int i = 0; i < rows; ++i) {
        fill(row, i);
        file.add_row(row);
    }
    file.end_table();
    file.close();
    const double seconds = watch.seconds();
    const auto bytes = static_cast<double>(std::filesystem::file_size(path));
    std::printf("write  %8d rows  %7.2f s  %8.0f rows/s  %6.1f MB file (%.0f bytes/row)  peak memory %.1f MB\n", rows,
                seconds, rows / seconds, bytes / 1e6, bytes / rows, peak_megabytes());
}

// Every value of a record, as its bytes. The sum keeps the work from being optimised away.
std::size_t read_values(libesedb_record_t* record, int values) {
    std::size_t sum = 0;
    for (int i = 0; i < values; ++i) {
        uint8_t buffer[256];
        std::size_t size = 0;
        libesedb_record_get_value_data_size(record, i, &size, nullptr);
        if (size != 0 && size <= sizeof(buffer)) {
            libesedb_record_get_value_data(record, i, buffer, size, nullptr);
        }
        sum += size;
    }
    return sum;
}

bool read(const std::string& path) {
    const stopwatch watch;
    const auto file = ese::open_file(QByteArray::fromStdString(path));
    const auto table = file ? ese::find_table(file.get(), QByteArray("Bench")) : nullptr;
    int rows = 0;
    if (!table || libesedb_table_get_number_of_records(table.get(), &rows, nullptr) != 1) {
        return false;
    }
    const double counted = watch.seconds();
    const int values = static_cast<int>(columns().size());
    std::size_t sum = 0;
    for (int i = 0; i < rows; ++i) {
        libesedb_record_t* record = nullptr;
        if (libesedb_table_get_record(table.get(), i, &record, nullptr) != 1) {
            return false;
        }
        const ese::record_handle owned(record);
        sum += read_values(record, values);
    }
    const double seconds = watch.seconds();
    std::printf("read   %8d rows  %7.2f s  (%.2f s to count)  %.1f us/row  %zu bytes/row  peak memory %.1f MB\n", rows,
                seconds, counted, 1e6 * seconds / std::max(rows, 1), sum / static_cast<std::size_t>(std::max(rows, 1)),
                peak_megabytes());
    return true;
}

} // namespace

int main(int argc, char** argv) {
    const int rows = argc > 1 ? std::atoi(argv[1]) : 1000000;
    const auto page_size = static_cast<std::uint32_t>(argc > 2 ? std::atoi(argv[2]) : 32768);
    const auto temporary = std::filesystem::temp_directory_path() / "bench_ese_writer.edb";
    const std::string path = argc > 3 ? argv[3] : temporary.string();
    int status = EXIT_SUCCESS;
    try {
        write(path, page_size, rows);
        if (!read(path)) {
            std::fprintf(stderr, "bench_ese_writer: libesedb cannot read the file\n");
            status = EXIT_FAILURE;
        }
    } catch (const std::exception& error) {
        std::fprintf(stderr, "bench_ese_writer: %s\n", error.what());
        status = EXIT_FAILURE;
    }
    if (argc <= 3) {
        std::error_code ignored;
        std::filesystem::remove(path, ignored);
    }
    return status;
}
