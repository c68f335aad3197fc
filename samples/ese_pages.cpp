// SPDX-License-Identifier: MIT
// Pages of an ESE file under construction.
#include "samples/ese_pages.h"

#include "samples/ese_bytes.h"
#include "samples/ese_checksum.h"
#include "samples/ese_writer.h"

namespace {

constexpr std::size_t root_value_size = 16;
// Current record format and error correcting checksums.
constexpr std::uint32_t common_flags = 0x2800;

void check(const std::ofstream& stream) {
    if (!stream) {
        throw ese_error("ESE writer: file could not be written");
    }
}

} // namespace

ese_page_file::ese_page_file(const std::filesystem::path& path, std::uint32_t size)
    : stream(path, std::ios::binary | std::ios::trunc), size_of_page(size) {
    if (size != 4096 && size != 8192 && size != 16384 && size != 32768) {
        throw ese_error("ESE writer: page size is not supported");
    }
    check(stream);
}

void ese_page_file::write(std::uint32_t number, std::string& page) {
    ese_set_page_checksums(page, number);
    write_at((static_cast<std::uint64_t>(number) + 1) * size_of_page, page);
}

void ese_page_file::write_at(std::uint64_t offset, const std::string& page) {
    // Seeking empties the stream's buffer, so it is left out where pages follow each other.
    if (offset != position) {
        stream.seekp(static_cast<std::streamoff>(offset));
    }
    stream.write(page.data(), static_cast<std::streamsize>(page.size()));
    check(stream);
    position = offset + page.size();
}

void ese_page_file::write_header(std::uint32_t highest_object) {
    constexpr std::uint32_t version = 0x620;
    constexpr std::uint32_t revision = 0x14;
    constexpr std::uint32_t clean_shutdown = 3;
    std::string header(size_of_page, '\0');
    put_le<std::uint32_t>(&header[4], 0x89ABCDEF);
    put_le(&header[8], version);
    put_le(&header[52], clean_shutdown);
    put_le(&header[212], highest_object);
    put_le(&header[232], revision);
    put_le(&header[236], size_of_page);
    put_le(&header[340], version);
    put_le(&header[344], revision);
    header[667] = 1;
    put_le(&header[0], ese_header_checksum(header));
    write_at(0, header);
    write_at(size_of_page, header);
}

void ese_page_file::close() {
    stream.close();
    check(stream);
}

ese_page_entries::ese_page_entries(std::uint32_t page_size)
    : size_of_page(page_size), header_size(ese_page_header_size(page_size)) {}

bool ese_page_entries::fits(std::size_t key_and_data) const {
    return used() + key_and_data <= capacity(size_of_page);
}

bool ese_page_entries::fits_root() const {
    return used() + root_value_size + 4 <= size_of_page - header_size;
}

void ese_page_entries::add(std::string_view key, std::string_view data) {
    append_le(content, static_cast<std::uint16_t>(key.size()));
    content.append(key);
    content.append(data);
    sizes.push_back(static_cast<std::uint16_t>(2 + key.size() + data.size()));
}

void ese_page_entries::clear() {
    content.clear();
    sizes.clear();
}

void ese_page_entries::put_tag(std::size_t index, std::size_t size, std::size_t offset) {
    char* const tag = &page[size_of_page - 4 * (index + 1)];
    put_le(tag, static_cast<std::uint16_t>(size));
    put_le(tag + 2, static_cast<std::uint16_t>(offset));
}

std::string& ese_page_entries::compose(std::uint32_t number, const ese_page_place& place) {
    const bool is_root = (place.flags & ese_flag_root) != 0;
    const std::size_t own_size = is_root ? root_value_size : 0;
    const std::size_t end = own_size + content.size();
    const std::size_t tags = sizes.size() + 1;
    page.assign(size_of_page, '\0');
    put_le<std::uint64_t>(&page[8], 1);
    put_le(&page[16], place.previous);
    put_le(&page[20], place.next);
    put_le(&page[24], place.object);
    put_le(&page[28], static_cast<std::uint16_t>(size_of_page - header_size - end - 4 * tags));
    put_le(&page[32], static_cast<std::uint16_t>(end));
    put_le(&page[34], static_cast<std::uint16_t>(tags));
    put_le(&page[36], place.flags | common_flags);
    if (ese_is_large(size_of_page)) {
        put_le(&page[64], number);
    }
    if (is_root) {
        put_le(&page[header_size], place.tree_pages);
        put_le(&page[header_size + 4], place.parent);
    }
    page.replace(header_size + own_size, content.size(), content);
    put_tag(0, own_size, 0);
    std::size_t offset = own_size;
    for (std::size_t i = 0; i < sizes.size(); ++i) {
        put_tag(i + 1, sizes[i], offset);
        offset += sizes[i];
    }
    return page;
}
