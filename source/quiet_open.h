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
#include <utility>

// As openat(2) with flags; -1 and errno when it fails. The caller closes the descriptor.
inline int open_quietly_at(int folder, const QByteArray& native_path, int flags) {
    const int handle = ::openat(folder, native_path.constData(), flags | O_NOATIME);
    if (handle < 0 && errno == EPERM) { // only a file's owner may leave its access time alone
        return ::openat(folder, native_path.constData(), flags);
    }
    return handle;
}
// The same as open(2).
inline int open_quietly(const QByteArray& native_path, int flags) {
    return open_quietly_at(AT_FDCWD, native_path, flags);
}

// A file opened so. Check is_open() first; errno tells why not.
class quiet_file {
public:
    quiet_file() = default;                                     // one that is not open
    explicit quiet_file(int descriptor) : handle(descriptor) {} // becomes this object's
    quiet_file(const QByteArray& native_path, int flags) : handle(open_quietly(native_path, flags)) {}
    quiet_file(int folder, const QByteArray& name, int flags) : handle(open_quietly_at(folder, name, flags)) {}
    ~quiet_file() {
        if (handle >= 0) {
            ::close(handle);
        }
    }
    quiet_file(quiet_file&& other) noexcept : handle(std::exchange(other.handle, -1)) {}
    quiet_file& operator=(quiet_file&& other) noexcept {
        std::swap(handle, other.handle);
        return *this;
    }
    quiet_file(const quiet_file&) = delete;
    quiet_file& operator=(const quiet_file&) = delete;

    bool is_open() const { return handle >= 0; }
    int descriptor() const { return handle; } // stays this object's; -1 when not open
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
    int handle = -1;
};

struct close_folder {
    void operator()(DIR* folder) const { ::closedir(folder); }
};
using folder_handle = std::unique_ptr<DIR, close_folder>;

// The folder of a descriptor that open_quietly() or open_quietly_at() gave, -1 included, and that becomes the folder's;
// null and errno when that is none.
inline folder_handle adopt_folder(int descriptor) {
    folder_handle folder(descriptor >= 0 ? ::fdopendir(descriptor) : nullptr);
    if (!folder && descriptor >= 0) {
        ::close(descriptor);
    }
    return folder;
}

// As opendir(3); null and errno when it fails.
inline folder_handle open_folder_quietly(const QByteArray& native_path) {
    return adopt_folder(open_quietly(native_path, O_RDONLY | O_DIRECTORY | O_CLOEXEC));
}
