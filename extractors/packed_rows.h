// SPDX-License-Identifier: MIT
// Rows of texts and numbers, all in one growing piece of memory. Each text in a piece of its own would lie between
// those that libesedb takes and gives back by the thousand, and the C library would walk over them in its search for
// room.
#pragma once

#include <QVariant>
#include <QVector>

#include <cstddef>
#include <vector>

class packed_rows {
public:
    // Values that hold a QString count as text (a null one comes back as an empty one), all others as a qint64.
    void append(const QVector<QVariant>& values);
    // Rows appended so far.
    int count() const { return static_cast<int>(ends.size()); }
    // The values of a row, which must be below count(), as they were appended.
    QVector<QVariant> at(int row) const;

private:
    void append_text(const QString& text);
    void append_bytes(const void* from, std::size_t count);

    std::vector<char> bytes; // of each value a mark, then its number, or its text's length and characters
    std::vector<std::size_t> ends;
};
