// SPDX-License-Identifier: MIT
// The log and checkpoint files stand with the database and the hive that they belong to.
#include "host/intake/wanted_parts.h"

#include "host/intake/names.h"

#include <QList>

namespace intake {
namespace {

const char* const package_mark = "Microsoft.Windows.Cortana";
const char* const places_in_package[] = {
    "AppData/Indexed DB/IndexedDB.edb",
    "LocalState/ESEDatabase_CortanaCoreInstance/CortanaCoreDb.dat",
    "LocalState/Graph",
    "LocalState/LocalRecorder/Speech",
};

// The name in the pattern's case, or empty.
QByteArray spelled(const QByteArray& pattern, const QByteArray& name) {
    const int star = pattern.indexOf('*');
    if (star < 0) {
        return folded(name) == folded(pattern) ? pattern : QByteArray();
    }
    const QByteArray begin = pattern.left(star);
    const QByteArray end = pattern.mid(star + 1);
    const int middle = name.size() - begin.size() - end.size();
    const bool fits =
        middle >= 0 && folded(name.left(star)) == folded(begin) && folded(name.right(end.size())) == folded(end);
    return fits ? begin + name.mid(star, middle) + end : QByteArray();
}

} // namespace

const char* const packages_folder = "AppData/Local/Packages";

const std::vector<wanted_files>& wanted_profile_files() {
    static const std::vector<wanted_files> list = {
        {"", {"NTUSER.DAT", "NTUSER.DAT.LOG1", "NTUSER.DAT.LOG2"}},
        {"AppData/Local/Microsoft/Windows/WebCache", {"WebCacheV01.dat", "V01*.log", "V01.chk"}},
    };
    return list;
}

QByteArray wanted_spelling(const wanted_files& files, const QByteArray& name) {
    for (const QByteArray& pattern : files.names) {
        const QByteArray wanted = spelled(pattern, name);
        if (!wanted.isEmpty()) {
            return wanted;
        }
    }
    return {};
}

QByteArray package_spelling(const QByteArray& name) {
    const QByteArray mark = package_mark;
    const int place = name.toLower().indexOf(mark.toLower());
    return place < 0 ? QByteArray() : QByteArray(name).replace(place, mark.size(), mark);
}

QByteArray spelling_in_package(const QByteArray& path) {
    QList<QByteArray> names = path.split('/');
    int most_known = 0;
    QList<QByteArray> best;
    for (const char* const place : places_in_package) {
        const QList<QByteArray> wanted = QByteArray(place).split('/');
        int known = 0;
        while (known < wanted.size() && known < names.size() && folded(names[known]) == folded(wanted[known])) {
            ++known;
        }
        if (known > most_known) {
            most_known = known;
            best = wanted;
        }
    }
    for (int i = 0; i < most_known; ++i) {
        names[i] = best[i];
    }
    return names.join('/');
}

} // namespace intake
