// SPDX-License-Identifier: MIT
// Damages ESE files on purpose, and finds the pages worth damaging.
#include "samples/ese_damage.h"

#include "samples/ese_bytes.h"
#include "samples/ese_catalog.h"
#include "samples/ese_pages.h"

#include <fstream>
#include <functional>

namespace {

using path = std::filesystem::path;

std::string read_at(std::fstream& stream, std::uint64_t offset, std::size_t size) {
    std::string data(size, '\0');
    stream.seekg(static_cast<std::streamoff>(offset));
    stream.read(data.data(), static_cast<std::streamsize>(size));
    if (!stream) {
        throw ese_error("ESE damage: place is outside the file");
    }
    return data;
}

void write_at(std::fstream& stream, std::uint64_t offset, const std::string& data) {
    stream.seekp(static_cast<std::streamoff>(offset));
    stream.write(data.data(), static_cast<std::streamsize>(data.size()));
    stream.flush();
    if (!stream) {
        throw ese_error("ESE damage: file could not be written");
    }
}

std::fstream open(const path& file) {
    std::fstream stream(file, std::ios::binary | std::ios::in | std::ios::out);
    if (!stream) {
        throw ese_error("ESE damage: file could not be opened");
    }
    return stream;
}

std::uint64_t offset_of(std::uint32_t page, std::uint32_t page_size) {
    return (static_cast<std::uint64_t>(page) + 1) * page_size;
}

// Replaces bytes that must be there already.
void replace(const path& file, std::uint64_t offset, std::size_t size,
             const std::function<void(std::string& data)>& change) {
    auto stream = open(file);
    std::string data = read_at(stream, offset, size);
    change(data);
    write_at(stream, offset, data);
}

std::uint32_t page_size_of(const path& file) {
    auto stream = open(file);
    const auto size = get_le<std::uint32_t>(read_at(stream, 236, 4).data());
    if (size < 2048 || size > 32768 || (size & (size - 1)) != 0) {
        throw ese_error("ESE damage: file has no valid page size");
    }
    return size;
}

void each_page(const path& file, std::uint32_t object,
               const std::function<void(std::uint32_t number, const std::string& data)>& visit) {
    const std::uint32_t page_size = page_size_of(file);
    const std::uint64_t pages = std::filesystem::file_size(file) / page_size;
    auto stream = open(file);
    for (std::uint32_t number = 1; number + 1 < pages; ++number) {
        const std::string data = read_at(stream, offset_of(number, page_size), page_size);
        if (get_le<std::uint32_t>(&data[24]) == object) {
            visit(number, data);
        }
    }
}

// The record of one entry of a leaf page, without its key.
std::string record_of(const std::string& page, std::uint16_t tag) {
    const bool large = ese_is_large(static_cast<std::uint32_t>(page.size()));
    const std::size_t mask = large ? 0x7FFF : 0x1FFF;
    const char* const at = &page[page.size() - 4 * (std::size_t{tag} + 1)];
    const std::size_t size = get_le<std::uint16_t>(at) & mask;
    const std::size_t header = ese_page_header_size(static_cast<std::uint32_t>(page.size()));
    const std::size_t offset = header + (get_le<std::uint16_t>(at + 2) & mask);
    if (size < 4 || offset + size > page.size()) {
        return {};
    }
    const unsigned flags = (large ? get_le<std::uint16_t>(&page[offset]) : get_le<std::uint16_t>(at + 2)) >> 13;
    const std::size_t key_at = (flags & 4) != 0 ? 2 : 0;
    const std::size_t key = (get_le<std::uint16_t>(&page[offset + key_at]) & 0x1FFFU) + key_at + 2;
    return key > size ? std::string() : page.substr(offset + key, size - key);
}

// The name of a catalog record: its first variable column.
std::string name_of(const std::string& record) {
    const std::size_t fixed_end = get_le<std::uint16_t>(&record[2]);
    const std::size_t variable_columns = static_cast<unsigned char>(record[1]) & 0x7FU;
    const std::size_t name_at = fixed_end + 2 * (variable_columns + 1);
    if (static_cast<unsigned char>(record[1]) < ese_first_variable || name_at > record.size()) {
        return {};
    }
    return record.substr(name_at, get_le<std::uint16_t>(&record[fixed_end]));
}

} // namespace

std::uint32_t ese_table_object(const path& file, const std::string& table) {
    constexpr std::size_t smallest = 4 + 26;
    std::uint32_t object = 0;
    each_page(file, ese_catalog_object, [&](std::uint32_t, const std::string& page) {
        const auto tags = get_le<std::uint16_t>(&page[34]);
        if ((get_le<std::uint32_t>(&page[36]) & ese_flag_leaf) == 0 || tags > page.size() / 4) {
            return;
        }
        for (std::uint16_t tag = 1; tag < tags; ++tag) {
            const std::string record = record_of(page, tag);
            if (record.size() >= smallest && get_le<std::uint16_t>(&record[8]) == ese_entry_table &&
                name_of(record) == table) {
                object = get_le<std::uint32_t>(&record[4]);
            }
        }
    });
    if (object == 0) {
        throw ese_error("ESE damage: no such table: " + table);
    }
    return object;
}

std::vector<ese_page> ese_pages_of(const path& file, std::uint32_t object) {
    std::vector<ese_page> result;
    each_page(file, object, [&](std::uint32_t number, const std::string& data) {
        result.push_back({number, (get_le<std::uint32_t>(&data[36]) & ese_flag_leaf) != 0});
    });
    return result;
}

void ese_truncate(const path& file, std::uint64_t size) {
    std::error_code error;
    if (std::filesystem::file_size(file, error) < size || error) {
        throw ese_error("ESE damage: file is not that long");
    }
    std::filesystem::resize_file(file, size, error);
    if (error) {
        throw ese_error("ESE damage: file could not be cut");
    }
}

void ese_flip_bit(const path& file, std::uint64_t offset, unsigned bit) {
    replace(file, offset, 1, [bit](std::string& data) {
        data[0] = static_cast<char>(static_cast<unsigned char>(data[0]) ^ (1U << (bit & 7)));
    });
}

void ese_set_byte(const path& file, std::uint64_t offset, std::uint8_t value) {
    replace(file, offset, 1, [value](std::string& data) { data[0] = static_cast<char>(value); });
}

void ese_zero_page(const path& file, std::uint32_t page) {
    const std::uint32_t size = page_size_of(file);
    replace(file, offset_of(page, size), size, [](std::string& data) { data.assign(data.size(), '\0'); });
}
