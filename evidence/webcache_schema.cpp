// SPDX-License-Identifier: MIT
// Columns with the ids that Windows gives them.
#include "evidence/webcache_schema.h"

namespace {

ese_column column(std::uint32_t id, const char* name, ese_type type) {
    ese_column made;
    made.id = id;
    made.name = name;
    made.type = type;
    if (type == ese_type::text || type == ese_type::large_text) {
        made.code_page = ese_code_page::utf_16;
    }
    return made;
}

constexpr std::int64_t container_limit = 346030080;
const char response_headers[] = "HTTP/1.1 200 OK\r\nContent-Type: text/html; charset=utf-8\r\nETag: \"5d1f\"\r\n\r\n";

} // namespace

std::vector<ese_column> webcache_container_columns() {
    return {column(1, "ContainerId", ese_type::signed_64),
            column(2, "SetId", ese_type::unsigned_32),
            column(3, "Flags", ese_type::unsigned_32),
            column(4, "Size", ese_type::signed_64),
            column(5, "Limit", ese_type::signed_64),
            column(6, "LastScavengeTime", ese_type::signed_64),
            column(7, "EntryMaxAge", ese_type::unsigned_32),
            column(8, "LastAccessTime", ese_type::signed_64),
            column(128, "Name", ese_type::text),
            column(256, "PartitionId", ese_type::large_text),
            column(257, "Directory", ese_type::large_text),
            column(258, "SecureDirectories", ese_type::large_text),
            column(259, "SecureUsage", ese_type::large_binary),
            column(260, "Group", ese_type::large_binary)};
}

std::vector<ese_column> webcache_entry_columns() {
    return {column(1, "EntryId", ese_type::signed_64),
            column(2, "ContainerId", ese_type::signed_64),
            column(3, "CacheId", ese_type::signed_64),
            column(4, "UrlHash", ese_type::signed_64),
            column(5, "SecureDirectory", ese_type::unsigned_32),
            column(6, "FileSize", ese_type::signed_64),
            column(7, "Type", ese_type::unsigned_32),
            column(8, "Flags", ese_type::unsigned_32),
            column(9, "AccessCount", ese_type::unsigned_32),
            column(10, "SyncTime", ese_type::signed_64),
            column(11, "CreationTime", ese_type::signed_64),
            column(12, "ExpiryTime", ese_type::signed_64),
            column(13, "ModifiedTime", ese_type::signed_64),
            column(14, "AccessedTime", ese_type::signed_64),
            column(15, "PostCheckTime", ese_type::signed_64),
            column(16, "SyncCount", ese_type::unsigned_32),
            column(17, "ExemptionDelta", ese_type::unsigned_32),
            column(256, "Url", ese_type::large_text),
            column(257, "Filename", ese_type::large_text),
            column(258, "FileExtension", ese_type::large_text),
            column(259, "RequestHeaders", ese_type::large_binary),
            column(260, "ResponseHeaders", ese_type::large_binary),
            column(261, "RedirectUrl", ese_type::large_text),
            column(262, "Group", ese_type::large_text),
            column(263, "ExtraData", ese_type::large_binary)};
}

ese_row webcache_container_row(const webcache_container& container) {
    return {container.id,
            0,
            75,
            0,
            container_limit,
            0,
            0,
            0,
            container.name,
            "M",
            container.directory,
            container.secure_directories};
}

ese_row webcache_entry_row(const webcache_entry& entry, std::int64_t entry_id, std::int64_t container_id) {
    const std::uint64_t url_hash = static_cast<std::uint64_t>(entry_id) * 0x5851F42D4C957F2D;
    return {entry_id,
            container_id,
            0,
            url_hash,
            entry.secure_directory,
            entry.file_size,
            1,
            0,
            entry.access_count,
            entry.sync_time,
            entry.creation_time,
            entry.expiry_time,
            entry.modified_time,
            entry.accessed_time,
            0,
            0,
            0,
            entry.url,
            entry.filename,
            nullptr,
            nullptr,
            ese_value::bytes(std::string(response_headers, sizeof(response_headers) - 1))};
}

void write_webcache_containers(ese_writer& file, const std::vector<webcache_container>& containers) {
    file.begin_table("Containers", webcache_container_columns());
    for (const webcache_container& container : containers) {
        file.add_row(webcache_container_row(container));
    }
    file.end_table();
}

void write_webcache_entries(ese_writer& file, std::int64_t container_id, const std::vector<webcache_entry>& entries) {
    file.begin_table("Container_" + std::to_string(container_id), webcache_entry_columns());
    std::int64_t entry_id = 0;
    for (const webcache_entry& entry : entries) {
        file.add_row(webcache_entry_row(entry, ++entry_id, container_id));
    }
    file.end_table();
}
