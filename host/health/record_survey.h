// SPDX-License-Identifier: MIT
// A cheap look at every entry of an ESE database's leaf pages: do the columns of each row lie within it, and is each
// long value that a row refers to there? Damage that no checksum tells, since whoever made it mended that, shows here.
// What it finds is a cause to ask the reader, which refuses such rows or takes other bytes for their values.
#pragma once

#include "host/health/page_view.h"

#include <QHash>
#include <QVector>

#include <array>

class record_survey {
public:
    // The entries of a leaf page, which all lie within it. False: one of them is not built as rows, or long values, of
    // its table are. The rows of a table agree on where the fixed columns end; the first one seen is taken to be right.
    bool take_leaf(const page_view& page);

    // After the last page, once for each table: its rows refer to long values that none of these trees holds whole.
    // Says no where there were more references than memory is given to.
    bool lacks_long_values(quint32 table, const QVector<quint32>& trees);

private:
    using fixed_ends = std::array<quint16, 128>; // by the last fixed column; 0: not seen yet
    // A value's number twofold: in front of a 0 for its head, in front of a 1 for its first part.
    using value_parts = QVector<quint64>;

    bool take_record(std::string_view record, fixed_ends& ends, value_parts& references);
    bool take_tagged(std::string_view tagged, value_parts& references);
    bool take_long_values(const page_view& page, value_parts& parts);
    void keep(value_parts& parts, quint64 part);

    QHash<quint32, fixed_ends> layouts;    // by table
    QHash<quint32, value_parts> referred;  // by table
    QHash<quint32, value_parts> available; // by tree of long values
    bool has_large_pages = false;
    int kept = 0;
    bool is_cut = false;
};
