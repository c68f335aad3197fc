// SPDX-License-Identifier: MIT
// What has a mark of its own is opened as that alone, so that its own library's words are told; the rest is tried.
#include "host/intake/open_source.h"

#include "host/intake/folder_view.h"
#include "source/native_names.h"

#include <algorithm>
#include <sys/stat.h>

namespace intake {
namespace {

void find_root(opened_source& opened) {
    const found_roots found = find_source_roots(*opened.view);
    if (found.roots.size() == 1) {
        opened.root = found.roots[0];
        return;
    }
    opened.view.reset();
    if (found.roots.isEmpty()) {
        opened.lacks_users = found.problem.isEmpty();
        opened.problem = found.problem.isEmpty() ? QStringLiteral("it holds no folder Users")
                                                 : QStringLiteral("no folder Users was found: %1").arg(found.problem);
        return;
    }
    opened.other_roots = found.roots;
    QStringList places;
    for (const source_root& root : found.roots) {
        places.append(root.path.isEmpty() ? QStringLiteral("its top") : shown_path(root.path));
    }
    opened.problem = QStringLiteral("several of its folders hold a folder Users: %1; give one of them")
                         .arg(places.join(QStringLiteral(", ")));
}

void open_as_folder(const QByteArray& native_path, opened_source& opened) {
    opened_folder folder = open_folder_view(native_path);
    opened.kind = source_kind::folder;
    opened.view = std::move(folder.view);
    opened.problem = folder.problem;
}

void open_as_archive(const QByteArray& native_path, const open_options& options, opened_source& opened) {
    opened_archive archive = open_archive_view(native_path, options.limit);
    opened.kind = source_kind::archive;
    opened.view = std::move(archive.view);
    opened.problem = archive.problem;
    opened.findings = archive.findings;
    if (!archive.is_archive && !archive.problem.isEmpty()) {
        opened.reasons.append(QStringLiteral("as an archive: %1").arg(archive.problem));
    }
}

void open_as_image(const QByteArray& native_path, image_format format, const open_options& options,
                   opened_source& opened) {
    opened.kind = source_kind::image;
    const image_files files = find_image_files(native_path, format);
    if (!files.problem.isEmpty()) {
        opened.problem = files.problem;
        return;
    }
    opened_image image = open_image_view(files, format, options.volume);
    opened.view = std::move(image.view);
    opened.volume = image.volume;
    opened.volumes = image.volumes;
    opened.problem = image.problem;
    if (opened.view && !opened.volumes[opened.volume - 1].problem.isEmpty()) {
        opened.findings.add_problem(QStringLiteral("volume %1").arg(opened.volume),
                                    opened.volumes[opened.volume - 1].problem);
    }
    if (!opened.view && opened.volumes.isEmpty()) {
        opened.reasons.append(QStringLiteral("as an image: %1").arg(image.problem));
    }
}

// Tried one after the other: an old tar or a raw image.
void open_unmarked(const QByteArray& native_path, const open_options& options, opened_source& opened) {
    open_as_archive(native_path, options, opened);
    if (opened.reasons.isEmpty()) {
        return; // it is an archive, whether usable or not
    }
    opened.problem.clear();
    open_as_image(native_path, image_format::raw, options, opened);
    if (opened.reasons.size() > 1) {
        opened.problem = QStringLiteral("it is not a folder, an image or an archive that can be read");
    } else {
        opened.reasons.clear();
    }
}

void open_file(const QByteArray& native_path, const open_options& options, opened_source& opened) {
    const judged_content content = content_of(native_path, opened.problem);
    if (!opened.problem.isEmpty()) {
        return;
    }
    const bool is_told = options.kind.has_value();
    const bool as_archive = is_told ? options.kind == source_kind::archive : content.kind == content_kind::archive;
    if (content.kind == content_kind::empty) {
        opened.is_no_source = true;
        opened.problem = QStringLiteral("it is empty");
    } else if (!is_told && content.kind == content_kind::not_handled) {
        opened.is_no_source = true;
        opened.problem = QStringLiteral("it is %1, which cannot be read").arg(QLatin1String(content.not_handled));
    } else if (!is_told && content.kind == content_kind::unknown) {
        open_unmarked(native_path, options, opened);
    } else if (as_archive) {
        open_as_archive(native_path, options, opened);
        if (!is_told && !opened.reasons.isEmpty()) {
            opened.problem =
                QStringLiteral("it begins like an archive or a compressed file, but no archive can be read from it");
        }
    } else {
        open_as_image(native_path, format_of(content.kind), options, opened);
    }
}

source_refusal refusal_of(const opened_source& opened, const open_options& options) {
    const auto holds_tree = [](const image_volume& volume) { return !volume.roots.isEmpty(); };
    const auto is_in_trouble = [](const image_volume& volume) { return !volume.problem.isEmpty(); };
    const QVector<image_volume>& volumes = opened.volumes;
    const auto trees = std::count_if(volumes.begin(), volumes.end(), holds_tree);
    if (opened.view) {
        return source_refusal::none;
    }
    if (!opened.reasons.isEmpty() || opened.is_no_source) {
        return source_refusal::not_a_source;
    }
    if (!opened.other_roots.isEmpty() || trees > 1 || (!volumes.isEmpty() && options.volume > volumes.size())) {
        return source_refusal::choose;
    }
    const bool looked_through = opened.lacks_users || (!volumes.isEmpty() && options.volume == 0 && trees == 0);
    return looked_through && std::none_of(volumes.begin(), volumes.end(), is_in_trouble) ? source_refusal::no_users
                                                                                         : source_refusal::unreadable;
}

} // namespace

opened_source open_source(const QByteArray& native_path, const open_options& options) {
    opened_source opened;
    struct stat status = {};
    if (::stat(native_path.constData(), &status) != 0) {
        opened.problem = error_words(errno);
        return opened;
    }
    const bool is_folder = S_ISDIR(status.st_mode);
    if (options.kind && is_folder != (*options.kind == source_kind::folder)) {
        opened.is_no_source = true;
        opened.problem = is_folder ? QStringLiteral("it is a folder") : QStringLiteral("it is not a folder");
    } else if (is_folder) {
        open_as_folder(native_path, opened);
    } else {
        open_file(native_path, options, opened);
    }
    if (opened.view) {
        find_root(opened);
    }
    opened.refusal = refusal_of(opened, options);
    return opened;
}

} // namespace intake
