// SPDX-License-Identifier: MIT
// Writes ESE database files (format version 0x620, revision 0x14) that libesedb opens. Rows are streamed: memory does
// not grow with their number. Plain standard C++; texts are UTF-8 std::strings.
#pragma once

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <memory>
#include <stdexcept>
#include <string>
#include <type_traits>
#include <utility>
#include <variant>
#include <vector>

// What every function here throws: the file could not be written, or the request makes no valid file.
class ese_error : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

// Numbers as stored in the file.
enum class ese_type : std::uint8_t {
    boolean = 1,
    unsigned_8 = 2,
    signed_16 = 3,
    signed_32 = 4,
    currency = 5, // signed 64-bit
    float_32 = 6,
    float_64 = 7,
    date_time = 8, // 8 bytes: an integer is stored as it is (file time), a double too (OLE date)
    binary = 9,
    text = 10,
    large_binary = 11,
    large_text = 12,
    super_large = 13, // libesedb reads no record of a table that has one
    unsigned_32 = 14,
    signed_64 = 15,
    guid = 16, // 16 bytes, given as ese_value::bytes()
    unsigned_16 = 17,
};

enum class ese_code_page : std::uint32_t { none = 0, utf_16 = 1200, windows_1252 = 1252, ascii = 20127 };

// One column of a table.
struct ese_column {
    // 1..127 fixed, 128..255 variable, 256..65535 tagged; 0: the next free one (fixed for numbers and GUIDs, variable
    // for binary and text, tagged for the large types). Fixed ids must run from 1 without a gap. libesedb lists the
    // columns of a table in the order of their ids; large types are tagged only, numbers and GUIDs fixed or tagged.
    std::uint32_t id = 0;
    std::string name; // UTF-8, stored in Windows-1252
    ese_type type = ese_type::signed_32;
    ese_code_page code_page = ese_code_page::none; // of the text types; none counts as 1252 there
    std::uint32_t size = 0;                        // bytes of a fixed text or binary column, else unused
};

// One value of a row. Converts from numbers and texts, so that rows read {1, "text", nullptr, 0.5}.
class ese_value {
public:
    // Where a value of a large type goes; other types are always in the record.
    enum class place { automatic, record, long_value };
    struct raw {
        std::string data;
    };
    using content_type = std::variant<std::monostate, std::int64_t, double, std::string, raw>;

    ese_value() = default; // NULL
    ese_value(std::nullptr_t) {}
    ese_value(double number) : stored(number) {}
    ese_value(float number) : stored(static_cast<double>(number)) {}
    ese_value(std::string utf8) : stored(std::move(utf8)) {}
    ese_value(const char* utf8) : stored(std::string(utf8)) {}
    template <typename T, std::enable_if_t<std::is_integral_v<T>, int> = 0>
    ese_value(T number) : stored(static_cast<std::int64_t>(number)) {} // unsigned 64-bit numbers keep their bits

    // Stored byte for byte whatever the column's type: invalid UTF-16, any byte as a boolean, 16 bytes as a GUID. In a
    // fixed column of numbers or GUIDs the size must be the column's.
    static ese_value bytes(std::string data) {
        ese_value value;
        value.stored = raw{std::move(data)};
        return value;
    }
    static ese_value bytes(const std::vector<std::uint8_t>& data) {
        return bytes(std::string(data.begin(), data.end()));
    }
    // Automatic: large values of more than 1024 bytes become long values, and smaller ones, the largest first, when the
    // record would not fit into its page. The other two never look at the size.
    ese_value& put(place where) {
        target = where;
        return *this;
    }

    const content_type& content() const { return stored; }
    place where() const { return target; }
    bool is_null() const { return std::holds_alternative<std::monostate>(stored); }

private:
    content_type stored;
    place target = place::automatic;
};

using ese_row = std::vector<ese_value>;

// The writer. One table is open at a time. After an exception the file is useless; destroying the writer before close()
// leaves a file without a header, which no reader opens.
//
// libesedb counts and reads the rows of a table of at most 16,385 leaf pages: at 400 bytes a row some 1,300,000 rows
// with 32768-byte pages, and 150,000 with 4096. Its cost per row grows with the number of leaf pages.
class ese_writer {
public:
    // Creates or replaces the file. Page sizes: 4096, 8192, 16384, 32768.
    explicit ese_writer(const std::filesystem::path& path, std::uint32_t page_size = 32768);
    ~ese_writer();
    ese_writer(const ese_writer&) = delete;
    ese_writer& operator=(const ese_writer&) = delete;

    void begin_table(const std::string& name, const std::vector<ese_column>& columns);
    // Values in the order in which begin_table() got the columns; missing ones at the end are NULL. A number that the
    // column's type does not hold, a character that its code page does not have, and a record that does not fit into a
    // page throw. NULL is written as Windows does: fixed columns hold 0x2A bytes beside the NULL bit, variable and
    // tagged ones nothing; fixed columns behind the last one with a value are left out.
    void add_row(const ese_row& values);
    void end_table();

    // Writes the catalog and the header, and closes the file.
    void close();

private:
    struct state;
    std::unique_ptr<state> inner;
};
