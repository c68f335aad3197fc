// SPDX-License-Identifier: MIT
// The page trees of an ESE database, put together while its pages pass by in the order of the file and walked when all
// have been seen. Leaf pages cannot be counted by their object id alone: pages that a tree gave up keep their bytes, so
// only what a root leads to counts; and a page that a tree needs but that was never written shows in no other way.
#pragma once

#include "host/health/page_damage.h"

#include <QHash>

class ese_trees {
public:
    // What a page leads to, as it says itself.
    struct page_content {
        quint32 object = 0;
        int live_entries = 0;      // of a leaf
        QVector<quint32> children; // of a branch page
        bool is_doubtful = false;  // of a leaf: its entries are not built as they should be
    };
    // The next page, first page 1.
    void add_unwritten() { add({0, 0, unwritten}, {}); }
    void add_sound(const page_content& content) {
        add(note_of(content, content.is_doubtful ? doubtful : 0), content.children);
    }
    void add_damaged(const page_content& content) { add(note_of(content, damaged), content.children); }

    // False: there were more pages or children than memory is given to, and no tree can be walked.
    bool is_complete() const { return complete; }

    struct walked_tree {
        qint64 entries = 0; // of its leaves; those of damaged ones are counted as they stand
        qint64 damaged = 0; // pages
        qint64 doubtful = 0;
    };
    // Walks the tree of an object and marks its pages as reached. New damage goes to `damage`.
    walked_tree walk(quint32 root, quint32 object, page_damage& damage);

    bool is_reached(quint32 page) const;
    // The object that led to the page; 0: none did.
    quint32 owner(quint32 page) const;
    // Adds to the number of each object id there the live entries of its undamaged leaves that no tree led to.
    void count_outside(QHash<quint32, qint64>& entries) const;

private:
    enum mark : quint8 { unwritten = 1, damaged = 2, reached = 4, doubtful = 8 };
    struct page_note {
        quint32 object = 0; // as the page says; of a reached one, the tree's
        quint16 entries = 0;
        quint8 marks = 0;
        bool has(mark wanted) const { return (marks & wanted) != 0; }
    };
    struct branch_note {
        quint32 page;
        quint32 first_child; // index into all_children
        quint32 child_count;
    };
    struct walk_state;

    static page_note note_of(const page_content& content, quint8 marks) {
        return {content.object, static_cast<quint16>(content.live_entries), marks};
    }
    void add(const page_note& note, const QVector<quint32>& children);
    void visit(quint32 page, bool is_sure, walk_state& walk);
    const char* fault_of(quint32 page, quint32 object) const;
    void collect_children(quint32 page, QVector<quint32>& into) const;

    QVector<page_note> notes; // of page n at n - 1
    QVector<branch_note> branches;
    QVector<quint32> all_children;
    bool complete = true;
};
