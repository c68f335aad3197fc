// SPDX-License-Identifier: MIT
// Opening of evidence that leaves its access times alone where the system allows that. Header only: the command-line
// host opens evidence the same way and links nothing of the plugin.
#pragma once

#include <QByteArray>

#include <cerrno>
#include <dirent.h>
#include <fcntl.h>
#include <memory>
#include <unistd.h>

// As open(2) with flags; -1 and errno when it fails. The caller closes the descriptor.
inline int open_quietly(const QByteArray& native_path, int flags) {
    const int handle = ::open(native_path.constData(), flags | O_NOATIME);
    if (handle < 0 && errno == EPERM) { // only a file's owner may leave its access time alone
        return ::open(native_path.constData(), flags);
    }
    return handle;
}

struct close_folder {
    void operator()(DIR* folder) const { ::closedir(folder); }
};
using folder_handle = std::unique_ptr<DIR, close_folder>;

// As opendir(3); null and errno when it fails.
inline folder_handle open_folder_quietly(const QByteArray& native_path) {
    const int descriptor = open_quietly(native_path, O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (descriptor < 0) {
        return nullptr;
    }
    folder_handle folder(::fdopendir(descriptor));
    if (!folder) {
        ::close(descriptor);
    }
    return folder;
}
