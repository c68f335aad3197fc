// SPDX-License-Identifier: MIT
// What the folder of an image holds of it. No library is let to look for further files by itself.
#include "host/intake/image_files.h"

#include "host/intake/image_segments.h"
#include "source/folder_listing.h"
#include "source/native_names.h"
#include "source/quiet_open.h"

#include <QtEndian>

#include <cerrno>

namespace intake {
namespace {

QString missing_segment(const QByteArray& name) {
    return QStringLiteral("the segment %1 is missing").arg(shown_path(name));
}

QByteArray bytes_of(const QByteArray& native_path, qint64 offset, int count) {
    const quiet_file file(native_path, O_RDONLY | O_NONBLOCK | O_CLOEXEC);
    QByteArray bytes(count, '\0');
    bytes.truncate(static_cast<int>(file.read(bytes.data(), count, offset < 0 ? file.size() + offset : offset)));
    return bytes;
}

QString trouble_at_ewf_end(const QByteArray& last) {
    constexpr int section_size = 76;
    switch (end_of_ewf_segment(bytes_of(last, -section_size, section_size))) {
    case ewf_end::another_follows:
        return QStringLiteral("the segment after it is missing");
    case ewf_end::cut_off:
        return QStringLiteral("it is cut off or damaged at its end");
    default:
        return {};
    }
}

// The descriptor is a file of its own, or lies in the first data file.
QByteArray vmdk_descriptor(const QByteArray& native_path) {
    constexpr int most = 1 << 20;
    constexpr int sector = 512;
    const QByteArray head = bytes_of(native_path, 0, sector);
    if (!head.startsWith("KDMV")) {
        return bytes_of(native_path, 0, most);
    }
    const quint64 place = qFromLittleEndian<quint64>(head.constData() + 28);
    const quint64 sectors = qFromLittleEndian<quint64>(head.constData() + 36);
    const bool possible = head.size() == sector && place < (quint64{1} << 40) && sectors <= most / sector;
    return possible ? bytes_of(native_path, static_cast<qint64>(place) * sector, static_cast<int>(sectors) * sector)
                    : QByteArray();
}

image_files vmdk_files(const QByteArray& folder, const QByteArray& name, const QVector<QByteArray>& siblings) {
    image_files files{{folder + name}, {}};
    const vmdk_extents extents = extents_of(vmdk_descriptor(folder + name));
    if (extents.has_parent) {
        files.problem = QStringLiteral("it holds only the differences to another image (a snapshot)");
    } else if (!extents.outside.isEmpty()) {
        files.problem = QStringLiteral("it names a file of another folder: %1").arg(shown_path(extents.outside));
    }
    const bool holds_data = bytes_of(folder + name, 0, 4) == "KDMV"; // else a text that only names the others
    for (const QByteArray& extent : extents.names) {
        if (holds_data && extent != name) { // the library would open that file in place of this one
            files.problem =
                QStringLiteral("it was renamed: it can only be read under its own name, %1").arg(shown_path(extent));
        } else if (!siblings.contains(extent)) {
            files.problem = missing_segment(extent);
        } else if (!holds_data) {
            files.paths.append(folder + extent);
        }
    }
    return files;
}

} // namespace

image_files find_image_files(const QByteArray& native_path, image_format format) {
    const int slash = native_path.lastIndexOf('/');
    const QByteArray folder = native_path.left(slash + 1);
    const QByteArray name = native_path.mid(slash + 1);
    QVector<QByteArray> siblings;
    for (const listed_name& sibling : list_folder(folder.isEmpty() ? QByteArray(".") : folder).names) {
        siblings.append(sibling.name);
    }
    if (format == image_format::vmdk) {
        return vmdk_files(folder, name, siblings);
    }
    if (format == image_format::vhd) {
        return {{native_path}, {}};
    }
    const segment_series series = format == image_format::ewf ? ewf_series(name, siblings) : raw_series(name, siblings);
    image_files files;
    for (const QByteArray& segment : series.names) {
        files.paths.append(folder + segment);
    }
    if (!series.missing.isEmpty()) {
        files.problem = missing_segment(series.missing);
    } else if (format == image_format::ewf) {
        const QString trouble = trouble_at_ewf_end(files.paths.last());
        files.problem =
            trouble.isEmpty() ? trouble : QStringLiteral("%1: %2").arg(shown_path(series.names.last()), trouble);
    }
    return files;
}

judged_content content_of(const QByteArray& native_path, QString& problem) {
    const quiet_file file(native_path, O_RDONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC);
    const int error = errno;
    const qint64 size = file.size();
    if (!file.is_open() || size < 0) {
        problem = file.is_open() ? QStringLiteral("it is neither a folder nor a regular file") : error_words(error);
        return {content_kind::unknown};
    }
    QByteArray head(judged_head, '\0');
    QByteArray tail(judged_head, '\0');
    head.truncate(static_cast<int>(file.read(head.data(), judged_head, 0)));
    problem = errno != 0 ? error_words(errno) : QString();
    tail.truncate(static_cast<int>(file.read(tail.data(), judged_head, qMax(qint64{0}, size - judged_head))));
    return judge_content(head, tail);
}

image_format format_of(content_kind kind) {
    return kind == content_kind::ewf    ? image_format::ewf
           : kind == content_kind::vmdk ? image_format::vmdk
           : kind == content_kind::vhd  ? image_format::vhd
                                        : image_format::raw;
}

QVector<QByteArray> source_files(const QByteArray& native_path) {
    QString problem;
    const judged_content content = content_of(native_path, problem);
    const bool may_be_image = problem.isEmpty() && content.kind != content_kind::archive &&
                              content.kind != content_kind::empty && content.kind != content_kind::not_handled;
    QVector<QByteArray> files{native_path};
    if (may_be_image) {
        for (const QByteArray& path : find_image_files(native_path, format_of(content.kind)).paths) {
            if (path != native_path) {
                files.append(path);
            }
        }
    }
    return files;
}

} // namespace intake
