// SPDX-License-Identifier: MIT
// Pages of an ESE database that are not as they should be, collected while their owners are not known yet.
#pragma once

#include <QVector>

class page_damage {
public:
    struct item {
        quint32 page;
        quint32 object;      // of the tree that the page belongs to
        bool is_sure_object; // the tree led to it; else the page itself says so, and it is damaged
        const char* reason;  // a literal
    };

    void add_by_page(quint32 page, quint32 object, const char* reason) { add({page, object, false, reason}); }
    void add_by_tree(quint32 page, quint32 object, const char* reason) { add({page, object, true, reason}); }

    qint64 total() const { return count; }
    const QVector<item>& first_ones() const { return kept; }

private:
    void add(const item& one) {
        constexpr int most_kept = 1000; // every page of a hostile file can be damaged
        ++count;
        if (kept.size() < most_kept) {
            kept.append(one);
        }
    }

    QVector<item> kept;
    qint64 count = 0;
};
