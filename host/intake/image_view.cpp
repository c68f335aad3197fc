// SPDX-License-Identifier: MIT
// Entries are found by their names in their folder's own listing, as bytes: the library's search by path folds case.
#include "host/intake/image_view.h"

#include "host/intake/image_volumes.h"
#include "host/intake/names.h"
#include "host/intake/times.h"

#include <QHash>
#include <QtEndian>

#include <algorithm>
#include <ctime>

namespace intake {
namespace {

// FAT's local time, which the library took for that of this machine.
qint64 wall_clock(time_t seconds) {
    std::tm parts = {};
    return ::localtime_r(&seconds, &parts) != nullptr ? qint64{::timegm(&parts)} : qint64{seconds};
}

std::optional<qint64> told(time_t seconds, quint32 nanoseconds, bool is_fat) {
    if (seconds == 0 && nanoseconds == 0) {
        return std::nullopt;
    }
    return ticks_of(is_fat ? wall_clock(seconds) : qint64{seconds}, nanoseconds);
}

ntfs_times times_of(const TSK_FS_META& meta, bool is_fat) {
    return {told(meta.crtime, meta.crtime_nano, is_fat), told(meta.mtime, meta.mtime_nano, is_fat),
            told(meta.atime, meta.atime_nano, is_fat),
            is_fat ? std::nullopt : told(meta.ctime, meta.ctime_nano, is_fat)};
}

// The kind of a reparse point; 0 when it is none.
quint32 reparse_tag(TSK_FS_FILE* file) {
    const TSK_FS_ATTR* const attribute = tsk_fs_file_attr_get_type(file, TSK_FS_ATTR_TYPE_NTFS_REPARSE, 0, 0);
    char tag[4] = {};
    const bool is_read =
        attribute != nullptr && tsk_fs_attr_read(attribute, 0, tag, sizeof tag, TSK_FS_FILE_READ_FLAG_NONE) == 4;
    return is_read ? qFromLittleEndian<quint32>(tag) : attribute != nullptr ? ~quint32{0} : 0;
}

constexpr quint32 stands_for_another_name = 0x20000000; // junctions, mount points, symbolic links

// Why the library's bytes of a file would not be its content.
QString content_trouble(TSK_FS_FILE* file) {
    if (!TSK_FS_TYPE_ISNTFS(file->fs_info->ftype)) {
        return {};
    }
    const quint32 tag = reparse_tag(file);
    if (tag != 0) {
        return QStringLiteral("its content is kept elsewhere (reparse point 0x%1)").arg(tag, 8, 16, QLatin1Char('0'));
    }
    const TSK_FS_ATTR* const data = tsk_fs_file_attr_get(file);
    return data != nullptr && (data->flags & TSK_FS_ATTR_ENC) != 0 ? QStringLiteral("it is encrypted by Windows (EFS)")
                                                                   : QString();
}

view_entry entry_of(TSK_FS_FILE* file) {
    view_entry entry;
    entry.name = file->name->name;
    if (file->meta == nullptr || (file->meta->flags & TSK_FS_META_FLAG_ALLOC) == 0) {
        entry.unreadable = QStringLiteral("what the file system keeps of it is damaged");
        return entry;
    }
    const bool is_ntfs = TSK_FS_TYPE_ISNTFS(file->fs_info->ftype);
    const bool is_folder = file->meta->type == TSK_FS_META_TYPE_DIR;
    const bool is_file = file->meta->type == TSK_FS_META_TYPE_REG;
    entry.times = times_of(*file->meta, !is_ntfs);
    if (file->meta->type == TSK_FS_META_TYPE_LNK || (is_ntfs && (reparse_tag(file) & stands_for_another_name) != 0)) {
        entry.kind = entry_kind::link;
    } else if (is_folder || is_file) {
        entry.kind = is_folder ? entry_kind::folder : entry_kind::file;
        entry.size = is_file ? qint64{file->meta->size} : -1;
        entry.unreadable = is_file ? content_trouble(file) : QString();
    }
    return entry;
}

bool is_shown(const TSK_FS_NAME* name) {
    return name != nullptr && name->name != nullptr && (name->flags & TSK_FS_NAME_FLAG_ALLOC) != 0 &&
           name->type != TSK_FS_NAME_TYPE_VIRT && name->type != TSK_FS_NAME_TYPE_VIRT_DIR && is_plain_name(name->name);
}

class image_view final : public source_view {
public:
    image_view(image_handle opened_image, file_system_handle opened_system)
        : image(std::move(opened_image)), system(std::move(opened_system)) {}

    view_listing list(const QByteArray& path) override {
        QString problem;
        if (!enter(path, problem)) {
            return {{}, problem};
        }
        return last_listing;
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

    image_handle take_image() {
        system.reset();
        return std::move(image);
    }

private:
    // A folder on the way from the top to the last one.
    struct level {
        QByteArray path;
        TSK_INUM_T number;
        QHash<QByteArray, TSK_INUM_T> folders; // in it
    };

    // Makes the folder the last one, listed and with its entries' numbers. The levels above it are not listed anew.
    bool enter(const QByteArray& path, QString& problem) {
        if (has_last && path == last_path) {
            return true;
        }
        const auto is_above = [&](const QByteArray& folder) { // at least one name
            return folder.isEmpty() ? !path.isEmpty() : path.startsWith(folder + '/');
        };
        while (!way.isEmpty() && !is_above(way.last().path)) {
            way.removeLast();
        }
        const QList<QByteArray> names = path.isEmpty() ? QList<QByteArray>() : path.split('/');
        while (way.size() <= names.size()) {
            const QByteArray name = names.value(way.size() - 1);
            const bool is_top = way.isEmpty();
            if (!is_top && !way.last().folders.contains(name)) {
                problem = QStringLiteral("there is no such folder");
                return false;
            }
            const level next = is_top ? level{{}, system->root_inum, {}}
                                      : level{joined(way.last().path, name), way.last().folders.value(name), {}};
            if (!list_folder(next, problem)) {
                return false;
            }
        }
        return true;
    }

    bool list_folder(const level& next, QString& problem) {
        tsk_error_reset();
        const image_folder_handle folder(tsk_fs_dir_open_meta(system.get(), next.number));
        if (!folder) {
            problem = image_error();
            return false;
        }
        way.append(next);
        last_path = next.path;
        has_last = true;
        last_listing = {};
        numbers.clear();
        for (size_t i = 0; i < tsk_fs_dir_getsize(folder.get()); ++i) {
            const image_file_handle file(tsk_fs_dir_get(folder.get(), i));
            if (!file || !is_shown(file->name)) {
                continue;
            }
            view_entry entry = entry_of(file.get());
            const TSK_INUM_T number = file->name->meta_addr;
            if (entry.kind == entry_kind::folder && leads_back(number)) {
                entry.kind = entry_kind::other;
                entry.unreadable = QStringLiteral("damaged: this folder is one of those that it lies in");
            }
            last_listing.entries.append(entry);
            numbers.insert(entry.name, number);
            if (entry.kind == entry_kind::folder) {
                way.last().folders.insert(entry.name, number);
            }
        }
        std::sort(last_listing.entries.begin(), last_listing.entries.end(),
                  [](const view_entry& left, const view_entry& right) { return left.name < right.name; });
        return true;
    }

    bool leads_back(TSK_INUM_T number) const {
        return std::any_of(way.begin(), way.end(), [&](const level& one) { return one.number == number; });
    }

    QString read_file(const QByteArray& path, int index, QByteArray& piece, file_sink& sink) {
        const int slash = path.lastIndexOf('/');
        QString problem;
        if (!enter(path.left(std::max(slash, 0)), problem)) {
            return problem;
        }
        const auto number = numbers.constFind(path.mid(slash + 1));
        if (number == numbers.constEnd()) {
            return QStringLiteral("there is no such file");
        }
        tsk_error_reset();
        const image_file_handle file(tsk_fs_file_open_meta(system.get(), nullptr, *number));
        if (!file || file->meta == nullptr || file->meta->type != TSK_FS_META_TYPE_REG) {
            return file ? QStringLiteral("it is not a regular file") : image_error();
        }
        const QString trouble = content_trouble(file.get());
        return trouble.isEmpty() ? read_content(file.get(), index, piece, sink) : trouble;
    }

    static QString read_content(TSK_FS_FILE* file, int index, QByteArray& piece, file_sink& sink) {
        for (qint64 offset = 0; offset < file->meta->size;) {
            const auto wanted = static_cast<size_t>(std::min<qint64>(piece.size(), file->meta->size - offset));
            const ssize_t got = tsk_fs_file_read(file, offset, piece.data(), wanted, TSK_FS_FILE_READ_FLAG_NONE);
            if (got <= 0) {
                return image_error();
            }
            if (!sink.take(index, piece.constData(), got)) {
                return {};
            }
            offset += got;
        }
        return {};
    }

    image_handle image; // the file system refers to it: closed after it
    file_system_handle system;
    QVector<level> way; // each in the one before it
    bool has_last = false;
    QByteArray last_path; // of the folder listed last
    view_listing last_listing;
    QHash<QByteArray, TSK_INUM_T> numbers; // by name in the last folder
};

image_handle open_image(const image_files& files, image_format format) {
    QVector<const char*> names;
    for (const QByteArray& path : files.paths) {
        names.append(path.constData());
    }
    const TSK_IMG_TYPE_ENUM type = format == image_format::ewf    ? TSK_IMG_TYPE_EWF_EWF
                                   : format == image_format::vmdk ? TSK_IMG_TYPE_VMDK_VMDK
                                   : format == image_format::vhd  ? TSK_IMG_TYPE_VHD_VHD
                                                                  : TSK_IMG_TYPE_RAW;
    const int count = format == image_format::vmdk ? 1 : names.size(); // a VMDK names the others itself
    tsk_error_reset();
    return image_handle(tsk_img_open(count, names.constData(), type, 0));
}

QString numbers_of(const QVector<int>& volumes) {
    QStringList texts;
    for (const int number : volumes) {
        texts.append(QString::number(number));
    }
    return texts.join(QStringLiteral(", "));
}

// The wanted volume's number, or 0 and a problem.
int chosen_volume(const QVector<image_volume>& volumes, int wanted, QString& problem) {
    if (wanted != 0) {
        const bool exists = wanted > 0 && wanted <= volumes.size();
        problem = !exists ? QStringLiteral("it has no volume %1, only 1 to %2").arg(wanted).arg(volumes.size())
                          : volumes[wanted - 1].problem;
        return exists ? wanted : 0;
    }
    QVector<int> with_root;
    for (const image_volume& volume : volumes) {
        if (!volume.roots.isEmpty()) {
            with_root.append(volume.number);
        }
    }
    if (with_root.size() > 1) {
        problem = QStringLiteral("several volumes hold a folder Users: %1; say which").arg(numbers_of(with_root));
    } else if (with_root.isEmpty()) {
        problem = volumes.size() == 1 && !volumes[0].problem.isEmpty()
                      ? volumes[0].problem
                      : QStringLiteral("none of its volumes holds a folder Users");
    }
    return with_root.size() == 1 ? with_root[0] : 0;
}

} // namespace

opened_image open_image_view(const image_files& files, image_format format, int volume) {
    opened_image opened;
    image_handle image = open_image(files, format);
    if (!image) {
        opened.problem = image_error();
        return opened;
    }
    opened.volumes = list_volumes(image.get(), opened.problem);
    if (opened.volumes.isEmpty()) {
        return opened;
    }
    for (image_volume& one : opened.volumes) {
        file_system_handle system = open_volume(image.get(), one);
        if (system) {
            image_view view(std::move(image), std::move(system));
            const found_roots found = find_source_roots(view);
            one.roots = found.roots;
            one.problem = one.problem.isEmpty() ? found.problem : one.problem;
            image = view.take_image();
        }
    }
    opened.volume = chosen_volume(opened.volumes, volume, opened.problem);
    if (opened.volume != 0) {
        image_volume& chosen = opened.volumes[opened.volume - 1];
        file_system_handle system = open_volume(image.get(), chosen);
        if (system) {
            opened.view = std::make_unique<image_view>(std::move(image), std::move(system));
            opened.problem.clear();
        }
    }
    return opened;
}

} // namespace intake
