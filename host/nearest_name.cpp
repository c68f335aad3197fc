// SPDX-License-Identifier: MIT
// Letters to insert, delete or replace, counted.
#include "host/nearest_name.h"

#include <QVector>

#include <algorithm>

namespace {

// Levenshtein's distance, one row of the matrix at a time.
int edit_distance(const QString& from, const QString& to) {
    QVector<int> row(to.size() + 1);
    for (int column = 0; column <= to.size(); ++column) {
        row[column] = column;
    }
    for (int line = 1; line <= from.size(); ++line) {
        int diagonal = row[0];
        row[0] = line;
        for (int column = 1; column <= to.size(); ++column) {
            const int replaced = diagonal + (from[line - 1] == to[column - 1] ? 0 : 1);
            diagonal = row[column];
            row[column] = std::min({row[column] + 1, row[column - 1] + 1, replaced});
        }
    }
    return row[to.size()];
}

} // namespace

QString nearest_name(const QString& typed, const QStringList& names) {
    constexpr int longest = 100; // of what was typed: enough for any name, and the cost stays small
    const QString wanted = typed.left(longest);
    return *std::min_element(names.begin(), names.end(), [&](const QString& left, const QString& right) {
        return edit_distance(wanted, left) < edit_distance(wanted, right);
    });
}
