// SPDX-License-Identifier: MIT
// Only what leads to a wanted place is looked at, not what lies below it.
#include "host/intake/as_it_stands.h"

#include "host/intake/entry_finder.h"
#include "host/intake/hive_base_block.h"
#include "host/intake/wanted_parts.h"
#include "source/places.h"

namespace intake {
namespace {

QByteArray bare(const char* below) {
    const QByteArray path = QByteArray(below).mid(1);
    return path.endsWith('/') ? path.chopped(1) : path;
}

bool stands_elsewhere(entry_finder& finder, const QByteArray& base, const QByteArray& wanted) {
    const found_entry found = finder.find(base, wanted);
    return found.there && found.path != joined(base, wanted);
}

bool has_package_elsewhere(entry_finder& finder, const QByteArray& packages) {
    for (const view_entry& entry : finder.list(packages).entries) {
        const QByteArray spelled = package_spelling(entry.name);
        if (spelled.isEmpty() || entry.kind != entry_kind::folder) {
            continue;
        }
        for (const evidence_place& place : places::in_package) {
            if (spelled != entry.name || stands_elsewhere(finder, joined(packages, entry.name), bare(place.below))) {
                return true;
            }
        }
    }
    return false;
}

bool has_log(entry_finder& finder, const QByteArray& hive) {
    return finder.find({}, hive + ".LOG1").entry.size > 0 || finder.find({}, hive + ".LOG2").entry.size > 0;
}

// The hives of the profiles that have a log.
QVector<QByteArray> hives_with_logs(entry_finder& finder, const QVector<QByteArray>& profiles) {
    QVector<QByteArray> hives;
    for (const QByteArray& profile : profiles) {
        for (const evidence_place& place : places::in_profile) {
            const QByteArray file = "Users/" + profile + '/' + bare(place.below);
            if (place.kind == evidence_kind::registry_hive && finder.find({}, file).there && has_log(finder, file)) {
                hives.append(file);
            }
        }
    }
    return hives;
}

class head_sink final : public file_sink {
public:
    void begin(int) override { head.clear(); }
    bool take(int, const char* bytes, qint64 count) override {
        head.append(bytes, static_cast<int>(qMin<qint64>(count, hive_format::header_size - head.size())));
        return head.size() < hive_format::header_size;
    }
    bool end(int, const QString&) override {
        any_unfinished = any_unfinished || !base_block_of(head).is_finished();
        return !any_unfinished;
    }
    bool any_unfinished = false;

private:
    QByteArray head;
};

} // namespace

standing standing_of(source_view& view, const source_root& root, const QVector<QByteArray>& profiles) {
    entry_finder finder(view, false);
    if (!root.path.isEmpty() || root.percent_encoded || stands_elsewhere(finder, {}, "Users")) {
        return standing::needs_staging;
    }
    for (const QByteArray& profile : profiles) {
        const QByteArray folder = "Users/" + profile;
        bool elsewhere = stands_elsewhere(finder, {}, folder) || stands_elsewhere(finder, folder, packages_folder()) ||
                         has_package_elsewhere(finder, joined(folder, packages_folder()));
        for (const evidence_place& place : places::in_profile) {
            elsewhere = elsewhere || stands_elsewhere(finder, folder, bare(place.below));
        }
        if (elsewhere) {
            return standing::needs_staging;
        }
    }
    return hives_with_logs(finder, profiles).isEmpty() ? standing::as_wanted : standing::has_logs;
}

bool has_unfinished_hive(source_view& view, const source_root& root, const QVector<QByteArray>& profiles) {
    entry_finder finder(view, root.percent_encoded);
    head_sink sink;
    view.read_files(hives_with_logs(finder, profiles), sink);
    return sink.any_unfinished;
}

} // namespace intake
