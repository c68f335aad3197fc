// SPDX-License-Identifier: MIT
// A walk never recurses and enters no page twice, so neither a cycle nor a deep tree does harm.
#include "host/health/ese_trees.h"

#include <algorithm>

namespace {

// 16 GiB of 4 KiB pages, 128 GiB of 32 KiB pages. With both, and a walk under way, some 150 MB of memory.
constexpr int most_pages = 4 * 1024 * 1024;
constexpr int most_children = 2 * most_pages;

} // namespace

struct ese_trees::walk_state {
    quint32 object;
    page_damage& damage;
    QVector<quint32> open;     // pages to visit
    QVector<quint32> doubtful; // pages that a damaged one led to
    walked_tree result;
};

void ese_trees::add(const page_note& note, const QVector<quint32>& children) {
    complete = complete && notes.size() < most_pages && all_children.size() + children.size() <= most_children;
    if (!complete) {
        return;
    }
    notes.append(note);
    if (!children.isEmpty()) {
        branches.append({static_cast<quint32>(notes.size()), static_cast<quint32>(all_children.size()),
                         static_cast<quint32>(children.size())});
        all_children += children;
    }
}

bool ese_trees::is_reached(quint32 page) const {
    return page != 0 && page <= static_cast<quint32>(notes.size()) && notes.at(static_cast<int>(page) - 1).has(reached);
}

quint32 ese_trees::owner(quint32 page) const {
    return is_reached(page) ? notes.at(static_cast<int>(page) - 1).object : 0;
}

// Why a tree cannot go on at the page; null: it can.
const char* ese_trees::fault_of(quint32 page, quint32 object) const {
    if (page == 0 || page > static_cast<quint32>(notes.size())) {
        return "it is in use, but the file ends before it";
    }
    const page_note& note = notes.at(static_cast<int>(page) - 1);
    if (note.has(unwritten)) {
        return "it is in use, but all zero";
    }
    if (note.object != object && !note.has(damaged)) {
        return "it is in use, but belongs to another tree";
    }
    return note.has(reached) ? "two places of the page trees lead to it" : nullptr;
}

void ese_trees::collect_children(quint32 page, QVector<quint32>& into) const {
    const auto found = std::lower_bound(branches.begin(), branches.end(), page,
                                        [](const branch_note& note, quint32 wanted) { return note.page < wanted; });
    if (found == branches.end() || found->page != page) {
        return;
    }
    for (quint32 i = found->child_count; i-- > 0;) { // the first one is visited first
        into.append(all_children.at(static_cast<int>(found->first_child + i)));
    }
}

void ese_trees::visit(quint32 page, bool is_sure, walk_state& walk) {
    if (const char* const fault = fault_of(page, walk.object)) {
        if (is_sure) {
            ++walk.result.damaged;
            walk.damage.add_by_tree(page, walk.object, fault);
        }
        return;
    }
    page_note& note = notes[static_cast<int>(page) - 1];
    if (!is_sure && note.object != walk.object) {
        return;
    }
    walk.result.entries += note.object == walk.object ? note.entries : 0;
    note.object = walk.object;
    note.marks |= reached;
    walk.result.damaged += note.has(damaged) ? 1 : 0;
    walk.result.doubtful += note.has(doubtful) ? 1 : 0;
    // The children of a damaged page come last and only if nothing else led to them: their numbers may be wrong.
    collect_children(page, is_sure && !note.has(damaged) ? walk.open : walk.doubtful);
}

ese_trees::walked_tree ese_trees::walk(quint32 root, quint32 object, page_damage& damage) {
    walk_state walk{object, damage, {root}, {}, {}};
    while (!walk.open.isEmpty()) {
        visit(walk.open.takeLast(), true, walk);
    }
    while (!walk.doubtful.isEmpty()) {
        visit(walk.doubtful.takeLast(), false, walk);
    }
    return walk.result;
}

void ese_trees::count_outside(QHash<quint32, qint64>& entries) const {
    for (const page_note& note : notes) {
        const auto found =
            note.entries != 0 && (note.marks & ~doubtful) == 0 ? entries.find(note.object) : entries.end();
        if (found != entries.end()) {
            found.value() += note.entries;
        }
    }
}
