// SPDX-License-Identifier: MIT
// What a file is by its content, and which files belong to an image. No library that reads images is needed for it.
#pragma once

#include "host/intake/content_kind.h"

#include <QString>
#include <QVector>

namespace intake {

enum class image_format { raw, ewf, vmdk, vhd };

// The files of an image that is to be opened: its segments, or the extents that a VMDK names.
struct image_files {
    QVector<QByteArray> paths; // native, in order; only these are opened
    QString problem;           // such as a missing segment; else empty
};
image_files find_image_files(const QByteArray& native_path, image_format format);

image_format format_of(content_kind kind); // raw for what has no mark of an image

// Of a file, by its first and last bytes. problem: why it cannot be looked at; else as it was.
judged_content content_of(const QByteArray& native_path, QString& problem);

// Every file that opening may read: the path itself, segments, extents. Reads the first and last bytes of files only.
QVector<QByteArray> source_files(const QByteArray& native_path);

} // namespace intake
