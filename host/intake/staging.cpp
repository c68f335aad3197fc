// SPDX-License-Identifier: MIT
// A copy counts only when the bytes that were written, read back, have the digest of those that were read.
#include "host/intake/staging.h"

#include "host/health/sha256.h"
#include "host/intake/names.h"
#include "host/intake/staging_folder.h"
#include "host/intake/wanted_parts.h"
#include "source/native_names.h"

#include <algorithm>

namespace intake {
namespace {

// Null when the file cannot be read back. piece: room for a part of it.
QByteArray digest_of(const staging_folder& folder, const QByteArray& path, QByteArray& piece) {
    quiet_file file;
    if (folder.open_file(path, file) != 0) {
        return {};
    }
    sha256 digest;
    for (qint64 offset = 0;;) {
        const qint64 got = file.read(piece.data(), piece.size(), offset);
        if (errno != 0) {
            return {};
        }
        if (got == 0) {
            return QByteArray::fromHex(digest.finish());
        }
        digest.take(piece.constData(), got);
        offset += got;
    }
}

class copying final : public file_sink {
public:
    copying(const QVector<planned_entry>& files, const staging_folder& into, const staging_limit& most,
            const std::function<bool()>& cancelled, const staging_hearer& told, staging_result& report)
        : planned(files), folder(into), limit(most), is_cancelled(cancelled), hearer(told), result(report) {}

    void begin(int index) override {
        digest = sha256();
        done = 0;
        trouble.clear();
        failed = folder.create_file(planned[index].path, file);
    }

    bool take(int index, const char* bytes, qint64 count) override {
        const qint64 said = planned[index].entry.size;
        done += count;
        all_done += count;
        if (done > (said >= 0 ? said : limit.largest_file) || all_done > limit.most_bytes) {
            trouble = QStringLiteral("it is larger than its entry says, or too large to be staged");
        }
        if (failed != 0 || !trouble.isEmpty() || is_cancelled()) {
            return false;
        }
        digest.take(bytes, count);
        failed = write_all(file, bytes, count);
        return failed == 0;
    }

    bool end(int index, const QString& problem) override {
        const planned_entry& one = planned[index];
        const bool was_created = file.is_open();
        file = quiet_file();
        if (failed == 0 && !is_cancelled()) {
            trouble = problem.isEmpty() ? trouble : problem;
            finish(one);
        }
        if (was_created && (failed != 0 || !trouble.isEmpty() || is_cancelled())) {
            folder.remove_file(one.path);
        }
        if (failed == EEXIST) {
            trouble = QStringLiteral("not staged: something stands at its place");
            failed = 0;
        }
        if (failed != 0) {
            result.stopped = QStringLiteral("%1: %2").arg(shown_path(one.path), error_words(failed));
        } else if (!trouble.isEmpty()) {
            result.findings.add_problem(shown_path(one.source), trouble);
        }
        return failed == 0 && !is_cancelled();
    }

private:
    void finish(const planned_entry& one) {
        if (trouble.isEmpty() && one.entry.size >= 0 && done < one.entry.size) {
            trouble = QStringLiteral("it is shorter than its entry says");
        }
        if (!trouble.isEmpty()) {
            return;
        }
        const QByteArray expected = QByteArray::fromHex(digest.finish());
        if (expected.isEmpty() || digest_of(folder, one.path, read_back) != expected) {
            trouble = QStringLiteral("the copy that was read back is another one than was written");
            return;
        }
        result.entries.append({one.source, one.path, entry_kind::file, done, expected, one.entry.times, {}, 0});
        hearer.staged(result.entries.last());
    }

    const QVector<planned_entry>& planned;
    const staging_folder& folder;
    const staging_limit& limit;
    const std::function<bool()>& is_cancelled;
    const staging_hearer& hearer;
    staging_result& result;
    quiet_file file;
    sha256 digest;
    qint64 done = 0;                                     // bytes of this file
    qint64 all_done = 0;                                 // bytes of all
    QByteArray read_back = QByteArray(piece_size, '\0'); // a piece of the copy
    int failed = 0;                                      // errno value of the staging folder
    QString trouble;                                     // of the evidence
};

void make_folders(const staging_plan& plan, const staging_folder& folder, const staging_hearer& hearer,
                  staging_result& result) {
    for (const planned_entry& one : plan.folders()) {
        const int failed = folder.make_folder(one.path);
        if (failed != 0) {
            result.stopped = QStringLiteral("%1: %2").arg(shown_path(one.path), error_words(failed));
            return;
        }
        result.entries.append({one.source, one.path, entry_kind::folder, 0, {}, one.entry.times, {}, 0});
        hearer.staged(result.entries.last());
    }
}

bool is_no_profile(const QByteArray& name) {
    for (const char* const system_folder : {"Public", "Default", "Default User", "All Users"}) {
        if (folded(name) == folded(system_folder)) {
            return true;
        }
    }
    return false;
}

// 0 or an errno value; EEXIST where a file stands already.
int make_placeholder(const staging_folder& folder, const QByteArray& path, const view_entry& entry) {
    if (entry.kind == entry_kind::folder) {
        return folder.make_folder(path);
    }
    quiet_file made;
    return folder.create_file(path, made);
}

void stage_existing_one(const found_entry& found, const QByteArray& path, const staging_folder& folder,
                        staging_result& result) {
    if (!found.problem.isEmpty()) {
        result.findings.add_problem(shown_path(found.path), found.problem);
    }
    const bool stands = found.entry.kind == entry_kind::file || found.entry.kind == entry_kind::folder;
    if (!found.there || !stands) {
        return;
    }
    const int failed = make_placeholder(folder, path, found.entry);
    if (failed != 0 && failed != EEXIST) {
        result.findings.add_problem(shown_path(found.path),
                                    QStringLiteral("that it exists could not be kept: ") + error_words(failed));
    } else if (failed == 0) {
        result.entries.append({found.path, path, found.entry.kind, 0, {}, found.entry.times, {}, 0});
    }
}

} // namespace

QVector<QByteArray> list_profiles(source_view& view, const source_root& root, health_report& findings) {
    entry_finder finder(view, root.percent_encoded);
    const found_entry users = finder.find(root.path, "Users");
    const view_listing listing = users.there ? finder.list(users.path) : view_listing{{}, users.problem};
    if (!listing.problem.isEmpty()) {
        findings.add_problem(shown_path(users.path), listing.problem);
    }
    QVector<QByteArray> profiles;
    for (const view_entry& entry : listing.entries) {
        const QByteArray name = finder.windows_name(entry.name);
        if (is_no_profile(name)) {
            continue;
        }
        if (entry.kind == entry_kind::link) {
            findings.add_note(shown_path(joined(users.path, entry.name)),
                              QStringLiteral("it is a link; not taken for a profile"));
        } else if (entry.kind == entry_kind::folder && !name.isEmpty()) {
            profiles.append(name);
        }
    }
    return profiles;
}

staging_result stage_profiles(source_view& view, const source_root& root, const QVector<QByteArray>& profiles,
                              const QByteArray& staging, const staging_limit& limit,
                              const std::function<bool()>& cancelled, const staging_hearer& hearer) {
    staging_result result;
    const staging_folder folder(staging);
    if (!folder.is_open()) {
        result.stopped = error_words(errno);
        return result;
    }
    staging_plan plan(view, root, limit, cancelled, result.findings);
    for (const QByteArray& profile : profiles) {
        plan.add_profile(profile);
    }
    QVector<QByteArray> sources;
    for (const planned_entry& one : plan.files()) {
        sources.append(one.source);
        hearer.planned(one);
    }
    make_folders(plan, folder, hearer, result);
    if (result.stopped.isEmpty() && !cancelled()) {
        copying sink(plan.files(), folder, limit, cancelled, hearer, result);
        view.read_files(sources, sink);
    }
    return result;
}

QString set_staged_times(const QByteArray& staging, const QVector<staged_entry>& entries) {
    const staging_folder folder(staging);
    int failed = folder.is_open() ? 0 : errno;
    for (const staged_entry& one : entries) {
        if (failed == 0) {
            failed = folder.set_times(one.path, one.times);
        }
        if (failed != 0) {
            return QStringLiteral("%1: %2").arg(shown_path(one.path), error_words(failed));
        }
    }
    return {};
}

staging_result stage_existing(source_view& view, const source_root& root, const QVector<QByteArray>& wanted,
                              const QByteArray& staging, const staging_limit& limit,
                              const std::function<bool()>& cancelled) {
    staging_result result;
    const staging_folder folder(staging);
    if (!folder.is_open()) {
        result.stopped = error_words(errno);
        return result;
    }
    QVector<QByteArray> paths = wanted; // in order, so that no folder is listed twice
    std::sort(paths.begin(), paths.end());
    paths.erase(std::unique(paths.begin(), paths.end()), paths.end());
    entry_finder finder(view, root.percent_encoded);
    for (const QByteArray& path : qAsConst(paths)) {
        if (cancelled()) {
            break;
        }
        if (result.entries.size() >= limit.most_entries) {
            result.findings.add_problem(shown_path(path), QStringLiteral("whether it and those after it exist was not "
                                                                         "looked for: there are too many"));
            break;
        }
        if (!is_evidence_place(path)) {
            stage_existing_one(finder.find(root.path, path), path, folder, result);
        }
    }
    return result;
}

} // namespace intake
