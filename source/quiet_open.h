// SPDX-License-Identifier: MIT
// Opening of evidence that leaves its access times alone where the system allows that. Header only: the command-line
// host opens evidence the same way and links nothing of the plugin.
#pragma once

#include <QByteArray>

#include <cerrno>
#include <dirent.h>
#include <fcntl.h>
#include <memory>
#include <sys/stat.h>
#include <unistd.h>

// As open(2) with flags; -1 and errno when it fails. The caller closes the descriptor.
inline int open_quietly(const QByteArray& native_path, int flags) {
    const int handle = ::open(native_path.constData(), flags | O_NOATIME);
    if (handle < 0 && errno == EPERM) { // only a file's owner may leave its access time alone
        return ::open(native_path.constData(), flags);
    }
    return handle;
}

// A file opened so. Check is_open() first; errno tells why not.
class quiet_file {
public:
    quiet_file(const QByteArray& native_path, int flags) : handle(open_quietly(native_path, flags)) {}
    ~quiet_file() {
        if (handle >= 0) {
            ::close(handle);
        }
    }
    quiet_file(const quiet_file&) = delete;
    quiet_file& operator=(const quiet_file&) = delete;

    bool is_open() const { return handle >= 0; }
    // Owned by this object; -1 when it is not open.
    int descriptor() const { return handle; }
    // Bytes of a regular file; -1 for anything else.
    qint64 size() const {
        struct stat status = {};
        return is_open() && ::fstat(handle, &status) == 0 && S_ISREG(status.st_mode) ? qint64{status.st_size} : -1;
    }
    // Puts up to count bytes from offset into to and returns how many; fewer at the end of the file (errno is 0 then)
    // and when a read fails (errno says why).
    qint64 read(char* to, qint64 count, qint64 offset) const {
        qint64 done = 0;
        for (errno = 0; done < count; errno = 0) {
            const ssize_t got = ::pread(handle, to + done, static_cast<size_t>(count - done), offset + done);
            if (got == 0 || (got < 0 && errno != EINTR)) {
                break;
            }
            done += got > 0 ? got : 0;
        }
        return done;
    }

private:
    int handle;
};

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
