// SPDX-License-Identifier: MIT
// mkntfs makes the volume, libntfs-3g fills it.
#include "tests/intake/ntfs_image.h"

#include "tests/support/file_content.h"

#include <QProcess>

#include <filesystem>
#include <memory>
#include <sys/stat.h>

#define HAVE_TIME_H // the library's headers would make up their own types
#define HAVE_SYS_TYPES_H
extern "C" {
#include <ntfs-3g/attrib.h>
#include <ntfs-3g/dir.h>
#include <ntfs-3g/inode.h>
#include <ntfs-3g/reparse.h>
#include <ntfs-3g/unistr.h>
#include <ntfs-3g/volume.h>
}

namespace {

struct close_inode {
    void operator()(ntfs_inode* inode) const { ntfs_inode_close(inode); }
};
struct unmount {
    void operator()(ntfs_volume* volume) const { ntfs_umount(volume, FALSE); }
};
struct close_attribute {
    void operator()(ntfs_attr* attribute) const { ntfs_attr_close(attribute); }
};
using inode_handle = std::unique_ptr<ntfs_inode, close_inode>;

void set_times(ntfs_inode* inode) {
    inode->creation_time = ntfs_image_times[0];
    inode->last_data_change_time = ntfs_image_times[1];
    inode->last_access_time = ntfs_image_times[2];
    inode->last_mft_change_time = ntfs_image_times[3];
    NInoSetDirty(inode);
}

inode_handle create(ntfs_inode* folder, const QByteArray& name, mode_t type) {
    ntfschar* text = nullptr;
    const int length = ntfs_mbstoucs(name.constData(), &text);
    const std::unique_ptr<ntfschar, decltype(&std::free)> owned(text, &std::free);
    inode_handle made(length > 0 ? ntfs_create(folder, 0, text, static_cast<u8>(length), type) : nullptr);
    if (!made) {
        qFatal("cannot create %s", name.constData());
    }
    return made;
}

void write_content(ntfs_inode* file, const QByteArray& content) {
    const std::unique_ptr<ntfs_attr, close_attribute> data(ntfs_attr_open(file, AT_DATA, AT_UNNAMED, 0));
    if (!data || ntfs_attr_pwrite(data.get(), 0, content.size(), content.constData()) != content.size()) {
        qFatal("cannot write into the volume");
    }
}

void make_special(ntfs_inode* inode, const ntfs_special& special) {
    if (special.is_encrypted) {
        const std::unique_ptr<ntfs_attr, close_attribute> data(ntfs_attr_open(inode, AT_DATA, AT_UNNAMED, 0));
        ntfs_attr_search_ctx* const found = ntfs_attr_get_search_ctx(inode, nullptr);
        ntfs_attr_lookup(AT_DATA, AT_UNNAMED, 0, CASE_SENSITIVE, 0, nullptr, 0, found);
        found->attr->flags = ATTR_IS_ENCRYPTED;
        ntfs_attr_put_search_ctx(found);
    }
    if (special.reparse_tag != 0) {
        const quint32 tag[] = {special.reparse_tag, 12, 0, 0, 0}; // tag, length of what follows, that
        ntfs_set_ntfs_reparse_data(inode, reinterpret_cast<const char*>(tag), sizeof tag, 0);
    }
    NInoSetDirty(inode);
}

void fill(ntfs_inode* folder, const std::filesystem::path& from, const QByteArray& below,
          const QVector<ntfs_special>& special) {
    for (const auto& entry : std::filesystem::directory_iterator(from)) {
        const QByteArray name = QByteArray::fromStdString(entry.path().filename().string());
        const inode_handle made = create(folder, name, entry.is_directory() ? S_IFDIR : S_IFREG);
        if (entry.is_directory()) {
            fill(made.get(), entry.path(), below + name + '/', special);
        } else {
            write_content(made.get(), whole_file(QString::fromStdString(entry.path().string())));
        }
        for (const ntfs_special& one : special) {
            if (one.path == below + name) {
                make_special(made.get(), one);
            }
        }
        set_times(made.get());
    }
}

} // namespace

void write_ntfs_image(const QByteArray& image, int mebibytes, const QByteArray& folder,
                      const QVector<ntfs_special>& special) {
    const QString path = QString::fromUtf8(image);
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly) || !file.resize(qint64{mebibytes} << 20) ||
        QProcess::execute(QStringLiteral("/usr/sbin/mkntfs"),
                          {QStringLiteral("-FQq"), QStringLiteral("-s512"), QStringLiteral("-p0"),
                           QStringLiteral("-H16"), QStringLiteral("-S63"), path}) != 0) {
        qFatal("cannot make %s", image.constData());
    }
    const std::unique_ptr<ntfs_volume, unmount> volume(ntfs_mount(image.constData(), 0));
    const inode_handle top(volume ? ntfs_inode_open(volume.get(), FILE_root) : nullptr);
    if (!top) {
        qFatal("cannot open %s", image.constData());
    }
    fill(top.get(), folder.constData(), {}, special);
}
