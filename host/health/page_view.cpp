// SPDX-License-Identifier: MIT
// Tags, from the page's end backwards, say where the entries are; tag 0 is of the page's own value.
#include "host/health/page_view.h"

#include "host/health/bytes.h"
#include "host/health/ese_page_sums.h"

#include <cstring>

namespace {

constexpr std::size_t tag_size = 4;
constexpr unsigned deleted = 2;
constexpr unsigned has_common_key = 4;

} // namespace

bool page_view::is_large() const {
    return bytes.size() >= ese_first_large_page;
}

// Nearly all pages differ in the first bytes already.
bool page_view::is_all_zero() const {
    return bytes.front() == '\0' && std::memcmp(bytes.data(), bytes.data() + 1, bytes.size() - 1) == 0;
}

quint32 page_view::object() const {
    return number_at<quint32>(bytes, 24);
}

quint32 page_view::flags() const {
    return number_at<quint32>(bytes, 36);
}

std::size_t page_view::tag_count() const {
    constexpr unsigned most = 0xfff; // no page has room for more; the bits above have other uses in newer revisions
    return number_at<quint16>(bytes, 34) & most;
}

int page_view::entry_count() const {
    return tag_count() == 0 ? 0 : static_cast<int>(tag_count()) - 1;
}

std::optional<page_view::tag> page_view::tag_at(std::size_t number) const {
    const std::size_t header = is_large() ? 80 : 40;
    const std::size_t tags = tag_count() * tag_size;
    if (header + tags > bytes.size()) {
        return {};
    }
    const std::size_t tag_place = bytes.size() - tag_size * (number + 1);
    const unsigned mask = is_large() ? 0x7fff : 0x1fff;
    const unsigned place = number_at<quint16>(bytes, tag_place + 2);
    const std::size_t size = number_at<quint16>(bytes, tag_place) & mask;
    const std::size_t offset = place & mask;
    if (offset + size > bytes.size() - header - tags) {
        return {};
    }
    const std::string_view value = bytes.substr(header + offset, size);
    return tag{value, (is_large() ? number_at<quint16>(value, 0) : place) >> 13};
}

std::optional<page_view::entry> page_view::entry_at(int index) const {
    const std::optional<tag> stored = tag_at(static_cast<std::size_t>(index) + 1);
    if (!stored) {
        return {};
    }
    constexpr unsigned size_bits = 0x1fff;
    const std::string_view value = stored->value;
    const std::size_t key_at = (stored->flags & has_common_key) != 0 ? 2 : 0;
    const std::size_t common = key_at != 0 ? number_at<quint16>(value, 0) & size_bits : 0;
    const std::size_t key_size = number_at<quint16>(value, key_at) & size_bits;
    return entry{(stored->flags & deleted) != 0, part_of(value, key_at + 2 + key_size, value.size()), common,
                 part_of(value, key_at + 2, key_size)};
}

std::string_view page_view::common_key() const {
    const std::optional<tag> own = tag_count() == 0 ? std::nullopt : tag_at(0);
    return own ? own->value : std::string_view();
}

std::optional<int> page_view::live_entries() const {
    int count = 0;
    for (int index = 0; index < entry_count(); ++index) {
        const std::optional<entry> one = entry_at(index);
        if (!one) {
            return {};
        }
        count += one->is_deleted ? 0 : 1;
    }
    return count;
}
