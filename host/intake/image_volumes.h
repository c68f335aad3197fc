// SPDX-License-Identifier: MIT
// The volumes of an image: by its partition table, or the image itself as one.
#pragma once

#include "host/intake/handles.h"
#include "host/intake/image_view.h"

namespace intake {

// The library's words for its last failure, one line of them.
QString image_error();

// Number, place and description of every volume. problem: why there are none.
QVector<image_volume> list_volumes(TSK_IMG_INFO* image, QString& problem);

// The file system of a volume, whose file_system and problem are filled in; null when it cannot be looked through.
file_system_handle open_volume(TSK_IMG_INFO* image, image_volume& volume);

} // namespace intake
