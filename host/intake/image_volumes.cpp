// SPDX-License-Identifier: MIT
// A file system at the very beginning comes first: its boot sector can pass for a partition table.
#include "host/intake/image_volumes.h"

namespace intake {
namespace {

bool is_bitlocker(TSK_IMG_INFO* image, qint64 offset) {
    char sector[16] = {};
    const QByteArray signature = "-FVE-FS-";
    return tsk_img_read(image, offset, sector, sizeof sector) == sizeof sector &&
           QByteArray::fromRawData(sector + 3, signature.size()) == signature;
}

// The mark in an MBR by which Windows, too, knows that the GPT is the one that counts. Without it a GPT can be left
// over from an earlier use of the disk.
bool has_protective_entry(TSK_IMG_INFO* image) {
    constexpr int sector_size = 512;
    constexpr int first_type = 450;
    constexpr int entry_size = 16;
    constexpr char protective = '\xee';
    char sector[sector_size] = {};
    bool found = false;
    if (tsk_img_read(image, 0, sector, sizeof sector) == sizeof sector) {
        for (int entry = 0; entry < 4; ++entry) {
            found = found || sector[first_type + entry * entry_size] == protective;
        }
    }
    return found;
}

// Asked for by name where it is known: where the library has to find out whether a disk has a GPT, it leaks the table
// of the MBR that it opened first.
partitions_handle open_partitions(TSK_IMG_INFO* image, QString& problem) {
    tsk_error_reset();
    const bool has_gpt = has_protective_entry(image);
    partitions_handle table(tsk_vs_open(image, 0, has_gpt ? TSK_VS_TYPE_GPT : TSK_VS_TYPE_DETECT));
    problem = table ? QString() : image_error();
    for (const auto type : {TSK_VS_TYPE_DOS, TSK_VS_TYPE_GPT}) { // both can be told from some disks
        if (!table) {
            table.reset(tsk_vs_open(image, 0, type));
        }
    }
    return table;
}

} // namespace

QString image_error() {
    const char* const words = tsk_error_get();
    const QString text = QString::fromUtf8(words).section(QLatin1Char('\n'), 0, 0);
    return text.isEmpty() ? QStringLiteral("no reason given") : text;
}

QVector<image_volume> list_volumes(TSK_IMG_INFO* image, QString& problem) {
    image_volume whole;
    whole.number = 1;
    whole.size = image->size;
    tsk_error_reset();
    if (is_bitlocker(image, 0) || file_system_handle(tsk_fs_open_img(image, 0, TSK_FS_TYPE_DETECT))) {
        return {whole};
    }
    const QString no_file_system = image_error();
    const partitions_handle table = open_partitions(image, problem);
    if (!table) {
        problem = QStringLiteral("%1; %2").arg(problem, no_file_system);
        return {};
    }
    QVector<image_volume> volumes;
    for (TSK_PNUM_T i = 0; i < table->part_count; ++i) {
        const TSK_VS_PART_INFO* const part = tsk_vs_part_get(table.get(), i);
        qint64 offset = 0;
        qint64 size = 0;
        if (part == nullptr || (part->flags & TSK_VS_PART_FLAG_ALLOC) == 0 ||
            __builtin_mul_overflow(part->start, table->block_size, &offset) ||
            __builtin_mul_overflow(part->len, table->block_size, &size)) {
            continue;
        }
        image_volume volume;
        volume.number = volumes.size() + 1;
        volume.offset = offset;
        volume.size = size;
        volume.description = QString::fromUtf8(part->desc);
        volumes.append(volume);
    }
    problem = volumes.isEmpty() ? QStringLiteral("its partition table names no volume") : QString();
    return volumes;
}

file_system_handle open_volume(TSK_IMG_INFO* image, image_volume& volume) {
    if (is_bitlocker(image, volume.offset)) {
        volume.problem = QStringLiteral("it is encrypted with BitLocker: unlock it and give the unlocked volume");
        return nullptr;
    }
    tsk_error_reset();
    file_system_handle system(tsk_fs_open_img(image, volume.offset, TSK_FS_TYPE_DETECT));
    if (!system) {
        volume.problem = image_error();
        return nullptr;
    }
    volume.file_system = QString::fromUtf8(tsk_fs_type_toname(system->ftype));
    if (!TSK_FS_TYPE_ISNTFS(system->ftype) && !TSK_FS_TYPE_ISFAT(system->ftype)) {
        volume.problem = QStringLiteral("its file system is not one of NTFS, FAT and exFAT");
        return nullptr;
    }
    if (system->last_block_act < system->last_block) {
        volume.problem = QStringLiteral("it ends beyond the image: the image is cut off, or a segment is missing");
    }
    return system;
}

} // namespace intake
