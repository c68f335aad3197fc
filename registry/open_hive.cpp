// SPDX-License-Identifier: MIT
// hivex opens by path and so would change the file's access time: it gets the path of a copy in memory.
#include "registry/open_hive.h"

#include "source/quiet_open.h"

#include <limits>
#include <sys/mman.h>
#include <sys/sendfile.h>

namespace {

// A descriptor of a nameless file in memory that holds the file's size bytes; -1 when that cannot be made.
class copy_in_memory {
public:
    copy_in_memory(const quiet_file& file, qint64 size) : handle(::memfd_create("hive", MFD_CLOEXEC)) {
        off_t done = 0;
        while (handle >= 0 && done < size) {
            const ssize_t got = ::sendfile(handle, file.descriptor(), &done, static_cast<size_t>(size - done));
            if (got == 0 || (got < 0 && errno != EINTR)) {
                break;
            }
        }
        whole = handle >= 0 && done == size;
    }
    ~copy_in_memory() {
        if (handle >= 0) {
            ::close(handle);
        }
    }
    copy_in_memory(const copy_in_memory&) = delete;
    copy_in_memory& operator=(const copy_in_memory&) = delete;

    bool is_whole() const { return whole; }
    QByteArray path() const { return "/proc/self/fd/" + QByteArray::number(handle); }

private:
    int handle;
    bool whole = false;
};

// Deliberate: the write flag makes hivex read the whole file into memory and close it at once. Without it the file
// stays mapped, and a source that goes away or shrinks during the walk would kill the process. Nothing is written.
hive_handle read_into_memory(const QByteArray& path) {
    return hive_handle(hivex_open(path.constData(), HIVEX_OPEN_WRITE));
}

} // namespace

opened_hive open_hive(const QByteArray& path) {
    // A pipe in the file's place must not block, and node handles beyond 2 GiB do not fit the walk's child maps.
    const quiet_file file(path, O_RDONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC);
    const qint64 size = file.size();
    if (size < 0 || size > std::numeric_limits<int>::max()) {
        return {};
    }
    const copy_in_memory copy(file, size);
    hive_handle hive = copy.is_whole() ? read_into_memory(copy.path()) : nullptr;
    if (!hive && (!copy.is_whole() || ::access(copy.path().constData(), R_OK) != 0)) {
        hive = read_into_memory(path); // its rows are worth more than its access time
    }
    return {std::move(hive), size};
}
