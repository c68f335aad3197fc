// SPDX-License-Identifier: MIT
// Paths are joined, never normalised; existence is the gate's to tell.
#include "source/discovery.h"

#include "source/directory_walk.h"
#include "source/source_guard.h"

namespace {

class search {
public:
    search(const QString& root, const bool& cancel_flag,
           const std::function<void(source_list list, const QString& path)>& tell)
        : guard(root), cancelled(cancel_flag), found(tell) {}

    bool look_through(const QString& profile) {
        look_at(profile, places::in_profile);
        const QString packages = profile + QLatin1String(places::packages_folder);
        return !guard.exists(packages) || look_into(packages);
    }

private:
    template <std::size_t Count>
    void look_at(const QString& folder, const evidence_place (&wanted)[Count]) {
        for (const evidence_place& place : wanted) {
            const QString path = folder + QLatin1String(place.below);
            if (guard.exists(path)) {
                found(place.list, path);
            }
        }
    }

    bool look_into(const QString& packages) {
        return walk_entries_in(packages, [&](const walk_entry& entry) {
            if (cancelled) {
                return false;
            }
            const QString name = entry.path.mid(packages.size());
            if (name.contains(QLatin1String(places::package_mark))) {
                look_at(packages + name, places::in_package);
            }
            return true;
        });
    }

    source_guard guard;
    const bool& cancelled;
    const std::function<void(source_list list, const QString& path)>& found;
};

} // namespace

bool find_sources(const QString& root, const QStringList& users, const bool& cancelled,
                  const std::function<void(source_list list, const QString& path)>& found) {
    search profiles(root, cancelled, found);
    for (const QString& user : users) {
        if (!profiles.look_through(root + QLatin1String(places::users_folder) + user)) {
            return false;
        }
    }
    return true;
}
