// SPDX-License-Identifier: MIT
// Every folder on a path is opened by its handle and its own name, so that an exchange meanwhile leads nowhere else.
#include "host/intake/folder_view.h"

#include "host/intake/names.h"
#include "host/intake/times.h"
#include "source/native_names.h"
#include "source/quiet_open.h"

#include <QList>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <sys/stat.h>
#include <sys/xattr.h>

namespace intake {
namespace {

constexpr int as_folder = O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC;
constexpr int as_file = O_RDONLY | O_NONBLOCK | O_NOFOLLOW | O_NOCTTY | O_CLOEXEC;

std::optional<qint64> told(const struct statx& status, unsigned mask, const statx_timestamp& time) {
    return (status.stx_mask & mask) != 0 ? ticks_of(time.tv_sec, time.tv_nsec) : std::nullopt;
}

// What ntfs-3g tells where the kernel has no word for it.
std::optional<qint64> creation_attribute(int folder, const char* name) {
    const quiet_file opened(folder, name, as_file);
    char value[8];
    const ssize_t size =
        opened.is_open() ? ::fgetxattr(opened.descriptor(), "system.ntfs_crtime_be", value, sizeof value) : -1;
    return ticks_of_attribute(QByteArray(value, size > 0 ? static_cast<int>(size) : 0));
}

view_entry entry_of(int folder, const char* name) {
    view_entry entry;
    entry.name = name;
    struct statx status = {};
    if (::statx(folder, name, AT_SYMLINK_NOFOLLOW, STATX_BASIC_STATS | STATX_BTIME, &status) != 0) {
        entry.unreadable = error_words(errno);
        return entry;
    }
    const mode_t mode = status.stx_mode;
    entry.kind = S_ISREG(mode)   ? entry_kind::file
                 : S_ISDIR(mode) ? entry_kind::folder
                 : S_ISLNK(mode) ? entry_kind::link
                                 : entry_kind::other;
    entry.size = S_ISREG(mode) ? static_cast<qint64>(status.stx_size) : -1;
    entry.times = {told(status, STATX_BTIME, status.stx_btime), told(status, STATX_MTIME, status.stx_mtime),
                   told(status, STATX_ATIME, status.stx_atime), told(status, STATX_CTIME, status.stx_ctime)};
    if (!entry.times.created && (S_ISREG(mode) || S_ISDIR(mode))) {
        entry.times.created = creation_attribute(folder, name);
    }
    return entry;
}

class folder_view final : public source_view {
public:
    explicit folder_view(const QByteArray& native_path) : top(native_path, O_RDONLY | O_DIRECTORY | O_CLOEXEC) {}
    bool is_open() const { return top.is_open(); }

    view_listing list(const QByteArray& path) override {
        view_listing listing;
        const quiet_file opened = open_below(joined(path, "."), as_folder);
        const folder_handle folder =
            adopt_folder(opened.is_open() ? open_quietly_at(opened.descriptor(), ".", as_folder) : -1);
        if (!folder) {
            listing.problem = error_words(errno);
            return listing;
        }
        errno = 0;
        while (const dirent* const entry = ::readdir(folder.get())) {
            if (std::strcmp(entry->d_name, ".") != 0 && std::strcmp(entry->d_name, "..") != 0) {
                listing.entries.append(entry_of(opened.descriptor(), entry->d_name));
            }
            errno = 0;
        }
        listing.problem = errno != 0 ? error_words(errno) : QString();
        std::sort(listing.entries.begin(), listing.entries.end(),
                  [](const view_entry& left, const view_entry& right) { return left.name < right.name; });
        return listing;
    }

    void read_files(const QVector<QByteArray>& paths, file_sink& sink) override {
        QByteArray piece(piece_size, '\0');
        for (int index = 0; index < paths.size(); ++index) {
            sink.begin(index);
            if (!sink.end(index, read_file(paths[index], index, piece, sink))) {
                return;
            }
        }
    }

private:
    // Every name but the last is that of a folder; an empty handle and errno when one cannot be opened.
    quiet_file open_below(const QByteArray& path, int flags) const {
        quiet_file folder(top.descriptor(), ".", as_folder);
        const QList<QByteArray> names = path.split('/');
        for (int i = 0; i < names.size() && folder.is_open(); ++i) {
            const bool last = i == names.size() - 1;
            if (!is_plain_name(names[i]) && !(last && names[i] == ".")) {
                errno = ENOENT;
                return {};
            }
            folder = quiet_file(folder.descriptor(), names[i], last ? flags : as_folder);
        }
        return folder;
    }

    QString read_file(const QByteArray& path, int index, QByteArray& piece, file_sink& sink) const {
        const quiet_file file = open_below(path, as_file);
        if (!file.is_open()) {
            return error_words(errno);
        }
        if (file.size() < 0) {
            return QStringLiteral("it is not a regular file");
        }
        for (qint64 offset = 0;;) {
            const qint64 got = file.read(piece.data(), piece.size(), offset);
            const int error = errno;
            if (got > 0 && !sink.take(index, piece.constData(), got)) {
                return {};
            }
            if (error != 0) {
                return error_words(error);
            }
            if (got < piece.size()) {
                return {};
            }
            offset += got;
        }
    }

    quiet_file top;
};

} // namespace

opened_folder open_folder_view(const QByteArray& native_path) {
    auto view = std::make_unique<folder_view>(native_path);
    if (!view->is_open()) {
        return {nullptr, error_words(errno)};
    }
    return {std::move(view), {}};
}

} // namespace intake
