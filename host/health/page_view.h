// SPDX-License-Identifier: MIT
// One page of an ESE database: its header and its entries.
#pragma once

#include <QtGlobal>

#include <optional>
#include <string_view>

class page_view {
public:
    // Objects and pages with a fixed meaning.
    static constexpr quint32 catalog_object = 2;
    static constexpr quint32 catalog_copy_object = 3;
    static constexpr quint32 catalog_root = 4;
    static constexpr quint32 catalog_copy_root = 24;

    enum flag : quint32 {
        leaf = 0x2,
        empty = 0x8, // given up; its entries no longer count
        space_tree = 0x20,
        index_tree = 0x40,
        long_value_tree = 0x80,
    };

    // A whole page, 2048 to 32768 bytes, that outlives this object.
    explicit page_view(std::string_view whole_page) : bytes(whole_page) {}

    bool is_all_zero() const;
    bool is_large() const;  // has the longer header, and flags in its entries instead of in their tags
    quint32 object() const; // the tree that it belongs to
    bool has(flag wanted) const { return (flags() & wanted) != 0; }
    // Entries, deleted ones included; the page's own value does not count.
    int entry_count() const;

    struct entry {
        bool is_deleted = false;
        std::string_view data;      // a record, a long value or its part, or the number of a child page
        std::size_t common_key = 0; // so many bytes of the page's common key come before the local key
        std::string_view local_key;
    };
    // Of a page that is no root; may be empty.
    std::string_view common_key() const;
    // 0 <= index < entry_count(). Nothing: the entry does not lie within the page.
    std::optional<entry> entry_at(int index) const;
    // Entries that are not deleted. Nothing: one of them does not lie within the page.
    std::optional<int> live_entries() const;

private:
    struct tag {
        std::string_view value;
        unsigned flags = 0;
    };
    std::optional<tag> tag_at(std::size_t number) const;
    quint32 flags() const;
    std::size_t tag_count() const;

    std::string_view bytes;
};
