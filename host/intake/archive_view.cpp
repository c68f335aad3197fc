// SPDX-License-Identifier: MIT
// The first pass keeps every entry under its path. Reading asks for entries by their place in the archive, so that of
// two with one name the one that was listed is read.
#include "host/intake/archive_view.h"

#include "host/intake/archive_names.h"
#include "host/intake/archive_reader.h"
#include "source/native_names.h"

#include <map>

namespace intake {
namespace {

struct kept_entry {
    view_entry entry;  // without its name
    qint64 place = -1; // -1: a folder that only the paths of others tell of
};

class archive_index {
public:
    archive_index(const archive_limit& most, health_report& report) : limit(most), findings(report) {}

    // Why the archive has to be refused; else empty.
    QString add(const archive_reader& reader, qint64 place);
    const kept_entry* find(const QByteArray& path) const {
        const auto found = entries.find(path);
        return found != entries.end() ? &found->second : nullptr;
    }
    view_listing list(const QByteArray& path) const;
    bool is_empty() const { return entries.empty(); }
    // True when there are files and not one of them can be read without a password.
    bool all_locked() const { return files > 0 && locked == files; }

private:
    void judge(const QByteArray& path, view_entry& entry);
    bool make_parents(const QByteArray& path);
    kept_entry& keep(const QByteArray& path, const kept_entry& kept) {
        name_bytes += path.size();
        return entries.emplace(path, kept).first->second;
    }

    archive_limit limit;
    health_report& findings;
    std::map<QByteArray, kept_entry> entries;
    qint64 name_bytes = 0;
    qint64 files = 0;
    qint64 locked = 0;
};

QString archive_index::add(const archive_reader& reader, qint64 place) {
    // Counted are those that were passed, too: an entry that is there a million times costs as much as so many others.
    if (place >= limit.most_entries || qint64(entries.size()) >= limit.most_entries ||
        name_bytes >= limit.most_name_bytes) {
        return QStringLiteral("it holds more entries than can be kept (%1): unpack it and give the folder")
            .arg(limit.most_entries);
    }
    const QByteArray name = reader.name();
    const archive_path named = path_in_archive(name);
    if (named.refusal != nullptr || name.isEmpty()) {
        const char* const why = named.refusal != nullptr ? named.refusal : "its name cannot be told";
        findings.add_problem(shown_path(name), QLatin1String(why) + QStringLiteral("; left out"));
        return {};
    }
    if (named.path.isEmpty()) {
        return {};
    }
    kept_entry kept{reader.described(), place};
    judge(named.path, kept.entry);
    if (!make_parents(named.path)) {
        findings.add_problem(shown_path(named.path), QStringLiteral("it stands below what is no folder; left out"));
        return {};
    }
    const auto known = entries.find(named.path);
    if (known == entries.end()) {
        keep(named.path, kept);
    } else if (known->second.entry.kind == entry_kind::folder && kept.entry.kind == entry_kind::folder) {
        known->second = known->second.place < 0 ? kept : known->second;
    } else {
        findings.add_problem(shown_path(named.path), QStringLiteral("it is in the archive twice; the first is taken"));
    }
    return {};
}

void archive_index::judge(const QByteArray& path, view_entry& entry) {
    if (entry.kind == entry_kind::link) {
        findings.add_note(shown_path(path), QStringLiteral("it is a link; not followed"));
    } else if (entry.kind == entry_kind::other) {
        findings.add_note(shown_path(path), QStringLiteral("it is not a regular file; passed over"));
    } else if (entry.kind == entry_kind::file) {
        ++files;
        locked += entry.unreadable.isEmpty() ? 0 : 1;
    }
    if (entry.size > limit.largest_entry) {
        entry.unreadable = QStringLiteral("it is larger than an entry may be (%1 bytes)").arg(limit.largest_entry);
    }
    if (!entry.unreadable.isEmpty()) {
        findings.add_note(shown_path(path), entry.unreadable);
    }
}

// The folders on the way, which need not be entries of their own. Of a kept folder all those above it are kept.
bool archive_index::make_parents(const QByteArray& path) {
    const kept_entry* known = nullptr;
    QVector<QByteArray> missing;
    QByteArray parent = path.left(qMax(0, path.lastIndexOf('/')));
    while (!parent.isEmpty() && (known = find(parent)) == nullptr) { // the last one is the deepest that is kept
        missing.append(parent);
        parent.truncate(qMax(0, parent.lastIndexOf('/')));
    }
    if (known != nullptr && known->entry.kind != entry_kind::folder) {
        return false;
    }
    kept_entry implied;
    implied.entry.kind = entry_kind::folder;
    for (const QByteArray& folder : qAsConst(missing)) {
        keep(folder, implied);
    }
    return true;
}

view_listing archive_index::list(const QByteArray& path) const {
    view_listing listing;
    const kept_entry* const folder = find(path);
    if (!path.isEmpty() && (folder == nullptr || folder->entry.kind != entry_kind::folder)) {
        listing.problem = QStringLiteral("there is no such folder");
        return listing;
    }
    const QByteArray begin = path.isEmpty() ? path : path + '/';
    for (auto at = entries.lower_bound(begin); at != entries.end() && at->first.startsWith(begin);) {
        const int slash = at->first.indexOf('/', begin.size());
        if (slash >= 0) { // all that a folder in it holds is passed over at once
            at = entries.lower_bound(at->first.left(slash) + char('/' + 1));
            continue;
        }
        listing.entries.append(at->second.entry);
        listing.entries.last().name = at->first.mid(begin.size());
        ++at;
    }
    return listing;
}

class archive_view final : public source_view {
public:
    archive_view(const QByteArray& native_path, const archive_limit& most)
        : limit(most), file(native_path, O_RDONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC), index(most, findings) {}

    opened_archive fill();
    view_listing list(const QByteArray& path) override { return index.list(path); }
    void read_files(const QVector<QByteArray>& paths, file_sink& sink) override;
    health_report findings;

private:
    // The indexes of wanted files by their places. Those that cannot be read have had their end; false: no more.
    bool sort_wanted(const QVector<QByteArray>& paths, file_sink& sink, std::map<qint64, int>& wanted) const;
    QString read_entry(archive_reader& reader, int position, QByteArray& piece, file_sink& sink) const;

    archive_limit limit;
    quiet_file file;
    archive_index index;
};

opened_archive archive_view::fill() {
    opened_archive opened;
    if (!file.is_open()) {
        opened.problem = error_words(errno);
        return opened;
    }
    archive_reader reader(file);
    for (qint64 place = 0; reader.next() != nullptr && opened.problem.isEmpty(); ++place) {
        opened.problem = index.add(reader, place);
    }
    opened.is_archive = reader.knows_format() && (!index.is_empty() || !reader.is_tar()); // zeros pass for a tar
    if (!opened.problem.isEmpty()) {
        return opened;
    }
    if (reader.needs_password() && (index.is_empty() || index.all_locked())) {
        opened.problem = QStringLiteral("it is protected with a password: unpack it and give the folder");
    } else if (index.is_empty()) {
        opened.problem =
            reader.problem().isEmpty() ? QStringLiteral("it is an archive without entries") : reader.problem();
    } else if (!reader.problem().isEmpty()) {
        findings.add_problem({}, QStringLiteral("the archive is cut off or damaged: %1").arg(reader.problem()));
    }
    return opened;
}

bool archive_view::sort_wanted(const QVector<QByteArray>& paths, file_sink& sink, std::map<qint64, int>& wanted) const {
    for (int position = 0; position < paths.size(); ++position) {
        const kept_entry* const kept = index.find(paths[position]);
        QString problem;
        if (kept == nullptr || kept->entry.kind != entry_kind::file) {
            problem = QStringLiteral("there is no such file");
        } else if (!kept->entry.unreadable.isEmpty()) {
            problem = kept->entry.unreadable;
        } else if (!wanted.emplace(kept->place, position).second) {
            problem = QStringLiteral("it was asked for twice");
        }
        if (!problem.isEmpty()) {
            sink.begin(position);
            if (!sink.end(position, problem)) {
                return false;
            }
        }
    }
    return true;
}

void archive_view::read_files(const QVector<QByteArray>& paths, file_sink& sink) {
    std::map<qint64, int> wanted;
    if (!sort_wanted(paths, sink, wanted)) {
        return;
    }
    QByteArray piece(piece_size, '\0');
    archive_reader reader(file);
    for (qint64 place = 0; !wanted.empty() && reader.next() != nullptr; ++place) {
        const auto found = wanted.find(place);
        if (found == wanted.end()) {
            continue;
        }
        const int position = found->second;
        wanted.erase(found);
        sink.begin(position);
        const bool is_same = path_in_archive(reader.name()).path == paths[position];
        const QString problem =
            is_same ? read_entry(reader, position, piece, sink) : QStringLiteral("the archive was changed meanwhile");
        if (!sink.end(position, problem)) {
            return;
        }
    }
    const QString problem = QStringLiteral("the archive is cut off or damaged: %1").arg(reader.problem());
    for (const auto& [place, position] : wanted) {
        sink.begin(position);
        if (!sink.end(position, problem)) {
            return;
        }
    }
}

QString archive_view::read_entry(archive_reader& reader, int position, QByteArray& piece, file_sink& sink) const {
    const qint64 said = reader.described().size;
    qint64 done = 0;
    while (true) {
        const qint64 got = reader.read(piece.data(), piece.size());
        if (got < 0) {
            return reader.problem();
        }
        done += got;
        if (done > limit.largest_entry || (said >= 0 && done > said)) {
            return QStringLiteral("it is larger than the archive says or an entry may be");
        }
        if (got == 0) {
            return done < said ? QStringLiteral("it is shorter than the archive says") : QString();
        }
        if (!sink.take(position, piece.constData(), got)) {
            return {};
        }
    }
}

} // namespace

opened_archive open_archive_view(const QByteArray& native_path, const archive_limit& limit) {
    auto view = std::make_unique<archive_view>(native_path, limit);
    opened_archive opened = view->fill();
    opened.findings = view->findings;
    if (opened.problem.isEmpty()) {
        opened.view = std::move(view);
    }
    return opened;
}

} // namespace intake
