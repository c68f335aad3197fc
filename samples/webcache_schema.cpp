// SPDX-License-Identifier: MIT
// Columns with the ids that Windows gives them.
#include "samples/webcache_schema.h"

#include "samples/schema_column.h"

namespace {

constexpr std::int64_t container_limit = 346030080;
const char response_headers[] = "HTTP/1.1 200 OK\r\nContent-Type: text/html; charset=utf-8\r\nETag: \"5d1f\"\r\n\r\n";

} // namespace

std::vector<ese_column> webcache_container_columns() {
    return {schema_column("ContainerId", ese_type::signed_64, 1),
            schema_column("SetId", ese_type::unsigned_32, 2),
            schema_column("Flags", ese_type::unsigned_32, 3),
            schema_column("Size", ese_type::signed_64, 4),
            schema_column("Limit", ese_type::signed_64, 5),
            schema_column("LastScavengeTime", ese_type::signed_64, 6),
            schema_column("EntryMaxAge", ese_type::unsigned_32, 7),
            schema_column("LastAccessTime", ese_type::signed_64, 8),
            schema_column("Name", ese_type::text, 128),
            schema_column("PartitionId", ese_type::large_text, 256),
            schema_column("Directory", ese_type::large_text, 257),
            schema_column("SecureDirectories", ese_type::large_text, 258),
            schema_column("SecureUsage", ese_type::large_binary, 259),
            schema_column("Group", ese_type::large_binary, 260)};
}

std::vector<ese_column> webcache_entry_columns() {
    return {schema_column("EntryId", ese_type::signed_64, 1),
            schema_column("ContainerId", ese_type::signed_64, 2),
            schema_column("CacheId", ese_type::signed_64, 3),
            schema_column("UrlHash", ese_type::signed_64, 4),
            schema_column("SecureDirectory", ese_type::unsigned_32, 5),
            schema_column("FileSize", ese_type::signed_64, 6),
            schema_column("Type", ese_type::unsigned_32, 7),
            schema_column("Flags", ese_type::unsigned_32, 8),
            schema_column("AccessCount", ese_type::unsigned_32, 9),
            schema_column("SyncTime", ese_type::signed_64, 10),
            schema_column("CreationTime", ese_type::signed_64, 11),
            schema_column("ExpiryTime", ese_type::signed_64, 12),
            schema_column("ModifiedTime", ese_type::signed_64, 13),
            schema_column("AccessedTime", ese_type::signed_64, 14),
            schema_column("PostCheckTime", ese_type::signed_64, 15),
            schema_column("SyncCount", ese_type::unsigned_32, 16),
            schema_column("ExemptionDelta", ese_type::unsigned_32, 17),
            schema_column("Url", ese_type::large_text, 256),
            schema_column("Filename", ese_type::large_text, 257),
            schema_column("FileExtension", ese_type::large_text, 258),
            schema_column("RequestHeaders", ese_type::large_binary, 259),
            schema_column("ResponseHeaders", ese_type::large_binary, 260),
            schema_column("RedirectUrl", ese_type::large_text, 261),
            schema_column("Group", ese_type::large_text, 262),
            schema_column("ExtraData", ese_type::large_binary, 263)};
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
