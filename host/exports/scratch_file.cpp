// SPDX-License-Identifier: MIT
// The file has no name, so that nothing is left of it whatever happens.
#include "host/exports/scratch_file.h"

#include <algorithm>
#include <cerrno>
#include <unistd.h>

namespace {

constexpr std::size_t piece = 1 << 18;

} // namespace

scratch_file::scratch_file(const export_folder& folder) : file(folder.create_scratch()) {
    if (file.get() < 0) {
        fail();
    }
}

bool scratch_file::fail() {
    if (trouble.isEmpty()) {
        trouble = qt_error_string(errno);
    }
    return false;
}

void scratch_file::write(std::string_view bytes) {
    buffer.append(bytes);
    written += bytes.size();
    if (buffer.size() >= piece) {
        flush();
    }
}

void scratch_file::flush() {
    if (trouble.isEmpty() && !write_all(file.get(), buffer)) {
        fail();
    }
    buffer.clear();
}

bool scratch_file::copy(std::uint64_t first, std::uint64_t last, pending_file& to) {
    flush();
    std::string bytes(piece, '\0');
    while (first < last && trouble.isEmpty()) {
        const std::size_t wanted = std::min<std::uint64_t>(piece, last - first);
        const ssize_t got = ::pread(file.get(), bytes.data(), wanted, static_cast<off_t>(first));
        if (got <= 0) {
            errno = got == 0 ? EIO : errno;
            fail();
        } else if (!to.write({bytes.data(), static_cast<std::size_t>(got)})) {
            return false;
        }
        first += got > 0 ? static_cast<std::uint64_t>(got) : 0;
    }
    return trouble.isEmpty();
}
