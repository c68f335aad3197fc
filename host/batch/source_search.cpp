// SPDX-License-Identifier: MIT
// A walk with a list of folders to come, so that no depth of the tree costs stack.
#include "host/batch/source_search.h"

#include "host/batch/source_kind.h"
#include "host/intake/image_files.h"
#include "host/intake/names.h"
#include "source/folder_listing.h"
#include "source/native_names.h"

#include <cerrno>
#include <sys/stat.h>

namespace batch {
namespace {

QString type_name(source_kind kind) {
    return kind == source_kind::image ? QStringLiteral("image") : QStringLiteral("archive");
}

QByteArray joined(const QByteArray& folder, const QByteArray& name) {
    return folder.endsWith('/') ? folder + name : folder + '/' + name;
}

class search {
public:
    search(const QByteArray& native_path, search_result& result) : top(native_path), found(result) {}

    void run() {
        QVector<QByteArray> folders{top};
        while (!folders.isEmpty()) {
            const QByteArray folder = folders.takeLast();
            const folder_listing listing = list_folder(folder);
            if (listing.error != 0) {
                found.findings.add_problem(shown_path(folder), error_words(listing.error));
            }
            if (holds_users(listing)) {
                add_tree(folder);
                continue;
            }
            look_at_files(folder, listing);
            for (auto name = listing.names.rbegin(); name != listing.names.rend(); ++name) {
                if (S_ISDIR(name->type)) {
                    folders.append(joined(folder, name->name)); // the first name is taken first
                }
            }
        }
    }

private:
    static bool holds_users(const folder_listing& listing) {
        static const QByteArray users = intake::folded("Users");
        for (const listed_name& one : listing.names) {
            if (S_ISDIR(one.type) && intake::folded(one.name) == users) {
                return true;
            }
        }
        return false;
    }

    QByteArray below_top(const QByteArray& path) const {
        const QByteArray below = path.mid(top.endsWith('/') ? top.size() : top.size() + 1);
        return below.isEmpty() ? path.mid(path.lastIndexOf('/') + 1) : below;
    }

    // What stands above the first percent-encoded folder decodes the names below it.
    void add_tree(const QByteArray& folder) {
        const int percent = folder.indexOf('%', top.size());
        const QByteArray path = percent < 0 ? folder : folder.left(folder.lastIndexOf('/', percent));
        for (int i = 0; percent >= 0 && i < found.sources.size(); ++i) {
            if (found.sources[i].path == path) {
                return;
            }
        }
        found.sources.append({path, below_top(path), QStringLiteral("folder")});
    }

    void look_at_files(const QByteArray& folder, const folder_listing& listing) {
        QSet<QByteArray> siblings;
        for (const listed_name& one : listing.names) {
            siblings.insert(one.name);
        }
        QVector<found_source> files;
        QSet<QByteArray> extents; // that the descriptor of another image names
        for (const listed_name& one : listing.names) {
            const QByteArray path = joined(folder, one.name);
            if (S_ISLNK(one.type)) {
                found.findings.add_note(shown_path(path), QStringLiteral("a link, which is not followed"));
            } else if (S_ISREG(one.type)) {
                look_at_file(path, one.name, siblings, files, extents);
            }
        }
        for (const found_source& file : qAsConst(files)) {
            if (!extents.contains(file.path)) {
                found.sources.append(file);
            }
        }
    }

    void look_at_file(const QByteArray& path, const QByteArray& name, const QSet<QByteArray>& siblings,
                      QVector<found_source>& files, QSet<QByteArray>& extents) {
        QString problem;
        const intake::judged_content content = intake::content_of(path, problem);
        if (!problem.isEmpty()) {
            found.findings.add_problem(shown_path(path), problem);
            return;
        }
        const judged_file judged = judge_file(name, content, siblings, false);
        if (judged.left_out) {
            found.findings.add_note(shown_path(path),
                                    QStringLiteral("left out: %1").arg(QLatin1String(judged.left_out)));
        }
        if (judged.kind == source_kind::none) {
            return;
        }
        if (content.kind == intake::content_kind::vmdk) {
            const QVector<QByteArray> parts = intake::find_image_files(path, intake::image_format::vmdk).paths;
            for (const QByteArray& part : parts.mid(1)) {
                extents.insert(part);
            }
        }
        files.append({path, below_top(path), type_name(judged.kind)});
    }

    QByteArray top;
    search_result& found;
};

void add_file(const QByteArray& path, search_result& found) {
    QString problem;
    const QByteArray name = path.mid(path.lastIndexOf('/') + 1);
    const intake::judged_content content = intake::content_of(path, problem);
    const judged_file judged = judge_file(name, content, {}, true);
    if (problem.isEmpty() && judged.kind == source_kind::none) {
        problem = QStringLiteral("it cannot be a source: %1").arg(QLatin1String(judged.left_out));
    }
    if (!problem.isEmpty()) {
        found.findings.add_problem(shown_path(path), problem);
        return;
    }
    found.sources.append({path, name, type_name(judged.kind)});
}

} // namespace

void search_for_sources(const QByteArray& native_path, search_result& found) {
    struct stat status = {};
    if (::stat(native_path.constData(), &status) != 0) {
        found.findings.add_problem(shown_path(native_path), error_words(errno));
    } else if (S_ISDIR(status.st_mode)) {
        search(native_path, found).run();
    } else {
        add_file(native_path, found);
    }
}

} // namespace batch
