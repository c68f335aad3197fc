// SPDX-License-Identifier: MIT
// Opening of evidence that leaves its access times alone where the system allows that.
#pragma once

#include <QByteArray>

#include <cerrno>
#include <fcntl.h>

// As open(2) with flags; -1 and errno when it fails. The caller closes the descriptor.
inline int open_quietly(const QByteArray& native_path, int flags) {
    const int handle = ::open(native_path.constData(), flags | O_NOATIME);
    if (handle < 0 && errno == EPERM) { // only a file's owner may leave its access time alone
        return ::open(native_path.constData(), flags);
    }
    return handle;
}
