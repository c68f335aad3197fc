// SPDX-License-Identifier: MIT
// The catalog of an ESE file.
#include "samples/ese_catalog.h"

#include "samples/ese_bytes.h"
#include "samples/ese_text.h"
#include "samples/ese_tree.h"

namespace {

// The catalog columns that the three kinds of entries share.
struct common_part {
    std::uint32_t table;
    std::uint16_t kind;
    std::uint32_t id;
    std::uint32_t type_or_root;
    std::uint32_t space;
    std::uint32_t pages_or_code_page;
};

// Behind the common part: the root flag (tables) and the record offset (fixed columns), each with those before it.
struct extra_part {
    bool has_root_flag = false;
    bool has_record_offset = false;
    std::uint16_t record_offset = 0;
};

std::string make_record(const common_part& common, const extra_part& extra, const std::string& name) {
    constexpr std::uint8_t common_columns = 7;
    constexpr std::uint8_t name_column = 128;
    const int last = common_columns + (extra.has_record_offset ? 2 : extra.has_root_flag ? 1 : 0);
    std::string record;
    append_le(record, static_cast<std::uint8_t>(last));
    append_le(record, name_column);
    append_le<std::uint16_t>(record, 0);
    append_le(record, common.table);
    append_le(record, common.kind);
    append_le(record, common.id);
    append_le(record, common.type_or_root);
    append_le(record, common.space);
    append_le<std::uint32_t>(record, 0);
    append_le(record, common.pages_or_code_page);
    if (last > common_columns) {
        append_le<std::uint8_t>(record, extra.has_root_flag ? 0xFF : 0x2A);
    }
    if (extra.has_record_offset) {
        append_le(record, extra.record_offset);
    }
    // Bit 7: the root flag is NULL. The bits without a column are set.
    if (last <= 8) {
        record.push_back(static_cast<char>(last == 8 ? 0x00 : 0x80));
    } else {
        record += std::string("\x80\xFE", 2);
    }
    put_le(&record[2], static_cast<std::uint16_t>(record.size()));
    std::string stored_name;
    ese_append_text(stored_name, name, ese_code_page::windows_1252);
    append_le(record, static_cast<std::uint16_t>(stored_name.size()));
    return record + stored_name;
}

std::string make_key(const common_part& common) {
    constexpr char not_null = 0x7F;
    std::string key(1, not_null);
    append_be(key, common.table ^ 0x80000000U);
    key.push_back(not_null);
    append_be(key, static_cast<std::uint16_t>(common.kind ^ 0x8000));
    key.push_back(not_null);
    append_be(key, common.id ^ 0x80000000U);
    return key;
}

} // namespace

void ese_catalog::add_table(const std::string& name, const ese_stored_tree& table,
                            const std::vector<ese_placed_column>& columns, const ese_stored_tree& long_values) {
    const auto add = [this](const common_part& common, const extra_part& extra, const std::string& entry_name) {
        entries.push_back({make_key(common), make_record(common, extra, entry_name)});
    };
    add({table.object, ese_entry_table, table.object, table.root, 80, table.pages}, {true, false, 0}, name);
    for (const auto& placed : columns) {
        add({table.object, ese_entry_column, placed.column.id, static_cast<std::uint32_t>(placed.column.type),
             placed.size, static_cast<std::uint32_t>(placed.column.code_page)},
            {false, placed.is_fixed(), placed.record_offset}, placed.column.name);
    }
    if (long_values.object != 0) {
        add({table.object, ese_entry_long_values, long_values.object, long_values.root, 100, long_values.pages}, {},
            "LV");
    }
}

void ese_catalog::write(ese_page_file& file) const {
    write_tree(file, ese_catalog_object, ese_catalog_page);
    write_tree(file, ese_catalog_copy_object, ese_catalog_copy_page);
}

void ese_catalog::write_tree(ese_page_file& file, std::uint32_t object, std::uint32_t root_page) const {
    ese_tree tree(file, object, 0, root_page);
    for (const auto& each : entries) {
        tree.add(each.key, each.record);
    }
    constexpr std::uint32_t database_root = 1;
    tree.finish(database_root);
}
