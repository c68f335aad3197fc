// SPDX-License-Identifier: MIT
// One volume of a disk image as a view: NTFS, FAT and exFAT. Deleted entries, alternate data streams and volume shadow
// copies are left out. FAT and exFAT keep local times without their zone; they are given as if they were UTC.
#pragma once

#include "host/intake/image_files.h"
#include "host/intake/source_root.h"
#include "host/intake/view.h"

#include <memory>

namespace intake {

struct image_volume {
    int number = 0; // as a person counts: 1 is the first
    qint64 offset = 0;
    qint64 size = 0;            // bytes
    QString description;        // as the partition table has it; empty without a table
    QString file_system;        // such as "ntfs"; empty when none was recognised
    QString problem;            // why it was not looked through, or not all of it; else empty
    QVector<source_root> roots; // where Windows trees stand in it
};

struct opened_image {
    std::unique_ptr<source_view> view; // of one volume; null: see problem
    int volume = 0;                    // its number
    QVector<image_volume> volumes;     // all of the image, the chosen one too
    QString problem;
};

// volume: number of the wanted one; 0: the one that holds a Windows tree. Several with one, none with one and a number
// that there is not are problems; the volumes tell what a person needs to choose.
opened_image open_image_view(const image_files& files, image_format format, int volume);

} // namespace intake
