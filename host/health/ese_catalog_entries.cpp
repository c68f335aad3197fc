// SPDX-License-Identifier: MIT
// Records of the catalog: a fixed part, of which the first four columns are needed, and the name as the first column of
// variable size.
#include "host/health/ese_catalog_entries.h"

#include "host/health/bytes.h"

namespace {

constexpr std::size_t record_header = 4;
constexpr unsigned needed_fixed_columns = 4;
constexpr std::size_t needed_fixed_size = record_header + 14;
constexpr unsigned name_column = 128;
constexpr std::size_t longest_name = 64;

QByteArray name_of(std::string_view record) {
    const unsigned last_variable = number_at<quint8>(record, 1);
    const std::size_t sizes_at = number_at<quint16>(record, 2);
    const unsigned size = number_at<quint16>(record, sizes_at);
    constexpr unsigned null_bit = 0x8000;
    if (last_variable < name_column || (size & null_bit) != 0) {
        return {};
    }
    const std::size_t name_at = sizes_at + 2 * (std::size_t{last_variable} - name_column + 1);
    const std::string_view name = part_of(record, name_at, qMin(std::size_t{size}, longest_name));
    return QByteArray(name.data(), static_cast<int>(name.size()));
}

bool is_tree(unsigned kind) {
    return kind == static_cast<unsigned>(ese_tree_kind::rows) || kind == static_cast<unsigned>(ese_tree_kind::index) ||
           kind == static_cast<unsigned>(ese_tree_kind::long_values);
}

} // namespace

QVector<ese_catalog_entry> ese_catalog_entries(const page_view& page, quint32 page_number) {
    QVector<ese_catalog_entry> entries;
    for (int index = 0; index < page.entry_count(); ++index) {
        const auto stored = page.entry_at(index);
        if (!stored || stored->is_deleted) {
            continue;
        }
        const std::string_view record = stored->data;
        const unsigned kind = number_at<quint16>(record, record_header + 4);
        if (record.size() < needed_fixed_size || number_at<quint8>(record, 0) < needed_fixed_columns ||
            !is_tree(kind)) {
            continue;
        }
        entries.append({static_cast<ese_tree_kind>(kind), number_at<quint32>(record, record_header),
                        number_at<quint32>(record, record_header + 6), number_at<quint32>(record, record_header + 10),
                        name_of(record), page_number});
    }
    return entries;
}
