// SPDX-License-Identifier: MIT
// The files that one image consists of, told from names and from a VMDK's own list. Rules over names and bytes alone.
#pragma once

#include <QByteArray>
#include <QVector>

namespace intake {

struct segment_series {
    QVector<QByteArray> names; // in order; a single name when it is no series
    QByteArray missing;        // the first name that is not there although a later one is; else empty
};

// name.001, name.002, ... (from 0 or 1, two digits or more), or name.aa, name.ab, ... as split(1) writes. siblings: all
// names in the folder of the image, its own included.
segment_series raw_series(const QByteArray& name, const QVector<QByteArray>& siblings);
// name.E01 to name.E99, name.EAA to name.ZZZ, in the upper or lower case of the given name.
segment_series ewf_series(const QByteArray& name, const QVector<QByteArray>& siblings);
// The last section of a segment file, which tells whether another one follows. tail: the last 76 bytes of the file.
enum class ewf_end { last_segment, another_follows, cut_off };
ewf_end end_of_ewf_segment(const QByteArray& tail);

struct vmdk_extents {
    QVector<QByteArray> names; // of the files that hold the data
    QByteArray outside;        // a name that leads to another folder; else empty
    bool has_parent = false;   // it holds the differences to another image only
};
// descriptor: the text that begins "# Disk DescriptorFile".
vmdk_extents extents_of(const QByteArray& descriptor);

} // namespace intake
