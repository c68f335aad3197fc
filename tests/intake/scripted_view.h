// SPDX-License-Identifier: MIT
// A source in memory, for what no real one does.
#pragma once

#include "host/intake/view.h"

#include <functional>

// One profile folder with two files whose reading goes as the test wants it.
class scripted_view final : public intake::source_view {
public:
    scripted_view() {
        first.name = "NTUSER.DAT";
        first.kind = intake::entry_kind::file;
    }

    intake::view_entry first;
    qint64 second_size = 5;
    QByteArray content = "12345";
    QString problem;                         // at the end of the first file
    std::function<void()> meanwhile = [] {}; // after its bytes

    intake::view_listing list(const QByteArray& path) override {
        intake::view_entry users;
        users.name = "Users";
        users.kind = intake::entry_kind::folder;
        intake::view_entry anna = users;
        anna.name = "anna";
        intake::view_entry second;
        second.name = "ntuser.dat.log1";
        second.kind = intake::entry_kind::file;
        second.size = second_size;
        return path.isEmpty()         ? intake::view_listing{{users}, {}}
               : path == "Users"      ? intake::view_listing{{anna}, {}}
               : path == "Users/anna" ? intake::view_listing{{first, second}, {}}
                                      : intake::view_listing{};
    }
    void read_files(const QVector<QByteArray>& paths, intake::file_sink& sink) override {
        for (int i = 0; i < paths.size(); ++i) {
            const bool is_first = paths[i].endsWith(first.name);
            sink.begin(i);
            sink.take(i, content.constData(), content.size());
            if (is_first) {
                meanwhile();
            }
            if (!sink.end(i, is_first ? problem : QString())) {
                return;
            }
        }
    }
};
