// SPDX-License-Identifier: MIT
// Ownership of the handles of libtsk and libarchive. The only place that names one of their free or close
// calls.
#pragma once

#include <archive.h>
#include <archive_entry.h>
#include <memory>
#include <tsk/libtsk.h>

namespace intake {

struct close_image {
    void operator()(TSK_IMG_INFO* image) const { tsk_img_close(image); }
};
struct close_partitions {
    void operator()(TSK_VS_INFO* partitions) const { tsk_vs_close(partitions); }
};
struct close_file_system {
    void operator()(TSK_FS_INFO* file_system) const { tsk_fs_close(file_system); }
};
struct close_image_folder {
    void operator()(TSK_FS_DIR* folder) const { tsk_fs_dir_close(folder); }
};
struct close_image_file {
    void operator()(TSK_FS_FILE* file) const { tsk_fs_file_close(file); }
};
struct free_archive {
    void operator()(archive* reader) const { archive_read_free(reader); }
};

using image_handle = std::unique_ptr<TSK_IMG_INFO, close_image>;
using partitions_handle = std::unique_ptr<TSK_VS_INFO, close_partitions>;
using file_system_handle = std::unique_ptr<TSK_FS_INFO, close_file_system>;
using image_folder_handle = std::unique_ptr<TSK_FS_DIR, close_image_folder>;
using image_file_handle = std::unique_ptr<TSK_FS_FILE, close_image_file>;
using archive_handle = std::unique_ptr<archive, free_archive>;

} // namespace intake
