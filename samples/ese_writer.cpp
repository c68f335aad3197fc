// SPDX-License-Identifier: MIT
// Writes ESE database files.
#include "samples/ese_writer.h"

#include "samples/ese_bytes.h"
#include "samples/ese_catalog.h"
#include "samples/ese_record.h"
#include "samples/ese_tree.h"

#include <algorithm>
#include <limits>
#include <optional>
#include <set>

namespace {

// The largest piece of a long value: that of Windows for 4096 bytes, and the like for the other sizes. Any of them,
// with its key and tag, fits into a root page.
std::size_t segment_size(std::uint32_t page_size) {
    return page_size - ese_page_header_size(page_size) - 42;
}

// The long values of one table. Their tree exists from the first one on.
class long_values {
public:
    long_values(ese_page_file& file, std::uint32_t object) : output(file), object_id(object) {}

    std::uint32_t add(const std::string& data) {
        if (data.size() > std::numeric_limits<std::int32_t>::max()) {
            throw ese_error("ESE writer: long value is too large");
        }
        if (!tree) {
            tree.emplace(output, object_id, ese_flag_long_values);
        }
        ++last_reference;
        std::string key;
        append_be(key, last_reference);
        std::string sizes;
        append_le<std::uint32_t>(sizes, 1); // use count
        append_le(sizes, static_cast<std::uint32_t>(data.size()));
        tree->add(key, sizes);
        const std::size_t step = segment_size(output.page_size());
        for (std::size_t offset = 0; offset < data.size(); offset += step) {
            key.resize(sizeof(last_reference));
            append_be(key, static_cast<std::uint32_t>(offset));
            tree->add(key, std::string_view(data).substr(offset, step));
        }
        return last_reference;
    }

    ese_stored_tree finish(std::uint32_t table_root) {
        if (!tree) {
            return {};
        }
        const std::uint32_t root = tree->finish(table_root);
        return {object_id, root, tree->pages()};
    }

private:
    ese_page_file& output;
    std::uint32_t object_id;
    std::uint32_t last_reference = 0;
    std::optional<ese_tree> tree;
};

struct open_table {
    open_table(ese_page_file& file, std::string table_name, std::uint32_t table_object,
               const std::vector<ese_placed_column>& placed)
        : name(std::move(table_name)), object(table_object), columns(placed), tree(file, object),
          outside(file, object + 1),
          encoder(placed, file.page_size(), [this](const std::string& data) { return outside.add(data); }) {}
    open_table(const open_table&) = delete;
    open_table& operator=(const open_table&) = delete;

    std::string name;
    std::uint32_t object;
    std::vector<ese_placed_column> columns;
    ese_tree tree;
    long_values outside;
    ese_record_encoder encoder;
    std::uint32_t rows = 0;
};

} // namespace

struct ese_writer::state {
    state(const std::filesystem::path& path, std::uint32_t page_size) : file(path, page_size) {}

    ese_page_file file;
    ese_catalog catalog;
    std::set<std::string> names;
    std::optional<open_table> table;
    std::uint32_t next_object = ese_first_table_object;
    bool closed = false;
};

ese_writer::ese_writer(const std::filesystem::path& path, std::uint32_t page_size)
    : inner(std::make_unique<state>(path, page_size)) {}

ese_writer::~ese_writer() = default;

void ese_writer::begin_table(const std::string& name, const std::vector<ese_column>& columns) {
    if (inner->table || inner->closed) {
        throw ese_error("ESE writer: a table is open, or the file is closed");
    }
    if (!inner->names.insert(name).second) {
        throw ese_error("ESE writer: table is there already: " + name);
    }
    inner->table.emplace(inner->file, name, inner->next_object, ese_place_columns(columns));
    inner->next_object += 2; // one for the long values
}

void ese_writer::add_row(const ese_row& values) {
    if (!inner->table) {
        throw ese_error("ESE writer: no table is open");
    }
    open_table& table = *inner->table;
    std::string key;
    append_be(key, ++table.rows);
    table.tree.add(key, table.encoder.encode(values));
}

void ese_writer::end_table() {
    if (!inner->table) {
        throw ese_error("ESE writer: no table is open");
    }
    open_table& table = *inner->table;
    const std::uint32_t root = table.tree.finish(1);
    const ese_stored_tree rows{table.object, root, table.tree.pages()};
    inner->catalog.add_table(table.name, rows, table.columns, table.outside.finish(root));
    inner->table.reset();
}

void ese_writer::close() {
    if (inner->table || inner->closed) {
        throw ese_error("ESE writer: a table is open, or the file is closed");
    }
    inner->catalog.write(inner->file);
    inner->file.write_header(inner->next_object - 1);
    inner->file.close();
    inner->closed = true;
}
