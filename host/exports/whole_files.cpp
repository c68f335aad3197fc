// SPDX-License-Identifier: MIT
// Everything is reached through the folder's descriptor, so that nothing can be put in its place meanwhile.
#include "host/exports/whole_files.h"

#include <QDir>
#include <QFile>

#include <cerrno>
#include <cstdio>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

constexpr std::size_t buffer_size = 1 << 18;
constexpr mode_t readable = 0666; // less the umask

int make_temporary(int folder, const QByteArray& wanted, QByteArray& name) {
    constexpr int most_tries = 1000; // names that a run which was killed left behind
    const QByteArray stem = '.' + wanted + ".part-" + QByteArray::number(qint64(::getpid())) + '-';
    int made = -1;
    for (int i = 0; i < most_tries && made < 0; ++i) {
        name = stem + QByteArray::number(i);
        made = ::openat(folder, name.constData(), O_RDWR | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, readable);
        if (made < 0 && errno != EEXIST) {
            break;
        }
    }
    if (made < 0) {
        name.clear();
    }
    return made;
}

} // namespace

bool write_all(int descriptor, std::string_view bytes) {
    while (!bytes.empty()) {
        const ssize_t done = ::write(descriptor, bytes.data(), bytes.size());
        if (done < 0 && errno != EINTR) {
            return false;
        }
        bytes.remove_prefix(done > 0 ? static_cast<std::size_t>(done) : 0);
    }
    return true;
}

void owned_descriptor::reset(int descriptor) {
    close();
    number = descriptor;
}

bool owned_descriptor::close() {
    const int closed = number;
    number = -1;
    return closed < 0 || ::close(closed) == 0;
}

pending_file::pending_file(int in_folder, const QByteArray& name) : folder(in_folder), wanted(name) {
    buffer.reserve(buffer_size);
    file.reset(make_temporary(folder, wanted, temporary));
    if (file.get() < 0) {
        fail_with_errno();
    }
}

pending_file::~pending_file() {
    if (!temporary.isEmpty()) {
        ::unlinkat(folder, temporary.constData(), 0);
    }
}

void pending_file::fail(const QString& reason) {
    if (trouble.isEmpty()) {
        trouble = reason;
    }
}

bool pending_file::fail_with_errno() {
    fail(qt_error_string(errno));
    return false;
}

bool pending_file::write(std::string_view bytes) {
    if (buffer.size() + bytes.size() > buffer_size && !flush()) {
        return false;
    }
    buffer.append(bytes);
    return !failed();
}

bool pending_file::flush() {
    if (!failed() && !write_all(file.get(), buffer)) {
        fail_with_errno();
    }
    buffer.clear();
    return !failed();
}

bool pending_file::make_whole() {
    if (!flush()) {
        return false;
    }
    if (::fsync(file.get()) != 0 || !file.close()) {
        return fail_with_errno();
    }
    std::string().swap(buffer);
    return true;
}

bool pending_file::put_in_place() {
    if (::renameat(folder, temporary.constData(), folder, wanted.constData()) != 0) {
        return fail_with_errno();
    }
    temporary.clear();
    return true;
}

export_folder::export_folder(const QString& wanted, bool may_be_link) : path(QDir::cleanPath(wanted)) {
    const QByteArray native = QFile::encodeName(path);
    if (::mkdir(native.constData(), 0777) != 0 && errno == ENOENT) {
        QDir().mkpath(path);
    }
    folder.reset(::open(native.constData(), O_RDONLY | O_DIRECTORY | O_CLOEXEC | (may_be_link ? 0 : O_NOFOLLOW)));
    if (folder.get() < 0) {
        const bool other = errno == ELOOP || errno == ENOTDIR;
        trouble = path + QStringLiteral(": ") +
                  (other ? QStringLiteral("it is a link, or no folder") : qt_error_string(errno));
    }
}

QString export_folder::error() const {
    if (!trouble.isEmpty()) {
        return trouble;
    }
    for (const auto& file : files) {
        if (file->failed()) {
            return path + QLatin1Char('/') + QString::fromUtf8(file->name()) + QStringLiteral(": ") + file->error();
        }
    }
    return {};
}

QByteArray export_folder::native_path() const {
    return QFile::encodeName(path);
}

pending_file& export_folder::create(const QByteArray& name) {
    files.push_back(std::make_unique<pending_file>(folder.get(), name));
    return *files.back();
}

int export_folder::create_scratch() const {
    constexpr mode_t own = 0600;
    int made = ::openat(folder.get(), ".", O_TMPFILE | O_RDWR | O_CLOEXEC, own);
    if (made < 0) { // not every file system has files without a name
        QByteArray name;
        made = make_temporary(folder.get(), "scratch", name);
        ::unlinkat(folder.get(), name.constData(), 0);
    }
    return made;
}

bool export_folder::put_all_in_place() {
    for (const auto& file : files) {
        if (!file->put_in_place()) {
            return false;
        }
    }
    if (::fsync(folder.get()) != 0) {
        trouble = path + QStringLiteral(": ") + qt_error_string(errno);
    }
    return !failed();
}
