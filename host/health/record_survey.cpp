// SPDX-License-Identifier: MIT
// A record: the last fixed and the last variable column, where the fixed part ends, fixed values and NULL bits, the
// ends of the variable values, these values, then an array of tagged columns and their values.
#include "host/health/record_survey.h"

#include "host/health/bytes.h"

#include <algorithm>

namespace {

constexpr std::size_t record_header = 4;
constexpr std::size_t tagged_header = 4; // column and offset
constexpr int most_kept = 8 * 1024 * 1024;

quint32 big_endian_at(const char* bytes) {
    return qFromBigEndian<quint32>(bytes);
}

// Where the tagged columns begin; 0: the variable values do not lie within the record, one after the other.
std::size_t end_of_variable(std::string_view record, unsigned last_variable, std::size_t fixed_end) {
    constexpr unsigned null_bit = 0x8000;
    const std::size_t count = last_variable - 127;
    const std::size_t values = fixed_end + 2 * count;
    std::size_t end = 0;
    for (std::size_t i = 0; i < count && values <= record.size(); ++i) {
        const std::size_t next = number_at<quint16>(record, fixed_end + 2 * i) & ~null_bit;
        if (next < end) {
            return 0;
        }
        end = next;
    }
    return values + end <= record.size() ? values + end : 0;
}

} // namespace

void record_survey::keep(value_parts& parts, quint64 part) {
    is_cut = is_cut || kept >= most_kept;
    if (!is_cut) {
        parts.append(part);
        ++kept;
    }
}

bool record_survey::take_tagged(std::string_view tagged, value_parts& references) {
    constexpr unsigned has_flags = 0x4000;
    constexpr unsigned first_tagged = 256;
    constexpr unsigned long_value = 4;
    const unsigned mask = has_large_pages ? 0x7fff : 0x3fff;
    const std::size_t values = number_at<quint16>(tagged, 2) & mask;
    if (values < tagged_header || values % tagged_header != 0 || values > tagged.size()) {
        return false;
    }
    unsigned last_column = first_tagged - 1;
    for (std::size_t at = 0; at < values; at += tagged_header) {
        const unsigned column = number_at<quint16>(tagged, at);
        const unsigned place = number_at<quint16>(tagged, at + 2);
        const std::size_t begin = place & mask;
        const bool is_last = at + tagged_header == values;
        const std::size_t end = is_last ? tagged.size() : number_at<quint16>(tagged, at + tagged_header + 2) & mask;
        if (column <= last_column || begin < values || end < begin || end > tagged.size()) {
            return false;
        }
        last_column = column;
        const bool may_be_long = has_large_pages || (place & has_flags) != 0;
        if (may_be_long && end - begin == 5 && (static_cast<unsigned char>(tagged[begin]) & long_value) != 0) {
            const quint64 value = number_at<quint32>(tagged, begin + 1);
            keep(references, value << 1);
            keep(references, value << 1 | 1);
        }
    }
    return true;
}

bool record_survey::take_record(std::string_view record, fixed_ends& ends, value_parts& references) {
    const unsigned last_fixed = number_at<quint8>(record, 0);
    const unsigned last_variable = number_at<quint8>(record, 1);
    const quint16 fixed_end = number_at<quint16>(record, 2);
    if (record.size() < record_header || last_fixed > 127 || last_variable < 127 ||
        fixed_end < record_header + last_fixed + (last_fixed + 7) / 8 || fixed_end > record.size()) {
        return false;
    }
    quint16& known_end = ends[last_fixed];
    known_end = known_end == 0 ? fixed_end : known_end;
    const std::size_t tagged_at = end_of_variable(record, last_variable, fixed_end);
    if (fixed_end != known_end || tagged_at == 0) {
        return false;
    }
    return tagged_at == record.size() || take_tagged(record.substr(tagged_at), references);
}

// Keys are a value's number, for its head of eight bytes, and number and offset, for its parts; they ascend.
bool record_survey::take_long_values(const page_view& page, value_parts& parts) {
    const std::string_view common = page.common_key();
    quint64 last = 0;
    for (int index = 0; index < page.entry_count(); ++index) {
        const auto entry = page.entry_at(index);
        if (!entry || entry->is_deleted) {
            continue;
        }
        char key[8] = {};
        const std::size_t size = entry->common_key + entry->local_key.size();
        const bool is_head = size == 4;
        if (entry->common_key > common.size() || (!is_head && size != sizeof key)) {
            return false;
        }
        common.copy(key, entry->common_key);
        entry->local_key.copy(key + entry->common_key, entry->local_key.size());
        const quint64 value = big_endian_at(key);
        const quint32 offset = big_endian_at(key + 4);
        const quint64 place = value << 32 | offset;
        if (place < last || (is_head && entry->data.size() != 8)) {
            return false;
        }
        last = place;
        if (is_head || offset == 0) {
            keep(parts, value << 1 | (is_head ? 0 : 1));
        }
    }
    return true;
}

bool record_survey::take_leaf(const page_view& page) {
    has_large_pages = page.is_large();
    if (page.has(page_view::index_tree)) {
        return true;
    }
    if (page.has(page_view::long_value_tree)) {
        return take_long_values(page, available[page.object()]);
    }
    fixed_ends& ends = layouts[page.object()];
    value_parts& references = referred[page.object()];
    bool is_sound = true;
    for (int index = 0; index < page.entry_count(); ++index) {
        const auto entry = page.entry_at(index);
        is_sound = entry && (entry->is_deleted || take_record(entry->data, ends, references)) && is_sound;
    }
    return is_sound;
}

bool record_survey::lacks_long_values(quint32 table, const QVector<quint32>& trees) {
    value_parts wanted = referred.take(table);
    value_parts there;
    for (const quint32 tree : trees) {
        there += available.value(tree);
    }
    std::sort(wanted.begin(), wanted.end());
    std::sort(there.begin(), there.end());
    wanted.erase(std::unique(wanted.begin(), wanted.end()), wanted.end());
    there.erase(std::unique(there.begin(), there.end()), there.end());
    return !is_cut && !std::includes(there.cbegin(), there.cend(), wanted.cbegin(), wanted.cend());
}
