// SPDX-License-Identifier: MIT
// Opening a database through a descriptor of our own: by path, libesedb would change the file's access time.
#include "ese/ese_handles.h"
#include "source/quiet_open.h"

#include <memory>

namespace {

// A pipe in a database's place would make an open without O_NONBLOCK wait for a writer that never comes.
struct database_input {
    explicit database_input(const QByteArray& path) : file(path, O_RDONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC) {}
    quiet_file file;
    qint64 position = 0;
};

// What libbfio calls for the input that it was handed; -1 is a failure.

database_input& input_of(intptr_t* handle) {
    return *reinterpret_cast<database_input*>(handle);
}

int free_handle(intptr_t** handle, libbfio_error_t**) {
    delete reinterpret_cast<database_input*>(*handle);
    *handle = nullptr;
    return 1;
}

// The input is open as long as it lives.
int open_handle(intptr_t*, int, libbfio_error_t**) {
    return 1;
}
int close_handle(intptr_t*, libbfio_error_t**) {
    return 0;
}
int is_there(intptr_t*, libbfio_error_t**) {
    return 1;
}

ssize_t read_handle(intptr_t* handle, uint8_t* buffer, size_t size, libbfio_error_t**) {
    database_input& input = input_of(handle);
    const qint64 got = input.file.read(reinterpret_cast<char*>(buffer), static_cast<qint64>(size), input.position);
    if (errno != 0) {
        return -1;
    }
    input.position += got;
    return got;
}

off64_t seek_handle(intptr_t* handle, off64_t offset, int whence, libbfio_error_t**) {
    database_input& input = input_of(handle);
    const qint64 base = whence == SEEK_CUR ? input.position : (whence == SEEK_END ? input.file.size() : 0);
    qint64 position = 0;
    if (base < 0 || __builtin_add_overflow(base, qint64{offset}, &position) || position < 0) {
        return -1;
    }
    return input.position = position;
}

int size_of_handle(intptr_t* handle, size64_t* size, libbfio_error_t**) {
    const qint64 bytes = input_of(handle).file.size();
    *size = static_cast<size64_t>(qMax(qint64{0}, bytes));
    return bytes < 0 ? -1 : 1;
}

} // namespace

ese::file_handle ese::open_file(const QByteArray& path) {
    auto input = std::make_unique<database_input>(path);
    if (input->file.size() < 0) {
        return nullptr;
    }
    libbfio_handle_t* handle = nullptr;
    if (libbfio_handle_initialize(&handle, reinterpret_cast<intptr_t*>(input.get()), free_handle, nullptr, open_handle,
                                  close_handle, read_handle, nullptr, seek_handle, is_there, is_there, size_of_handle,
                                  LIBBFIO_FLAG_IO_HANDLE_MANAGED, nullptr) != success) {
        return nullptr;
    }
    static_cast<void>(input.release()); // freed with handle
    close_file closer{std::unique_ptr<libbfio_handle_t, free_input>(handle)};
    libesedb_file_t* file = nullptr;
    if (libesedb_file_initialize(&file, nullptr) != success) {
        return nullptr;
    }
    file_handle owned(file, std::move(closer));
    return libesedb_file_open_file_io_handle(file, handle, LIBESEDB_OPEN_READ, nullptr) == success ? std::move(owned)
                                                                                                   : nullptr;
}
