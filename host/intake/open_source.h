// SPDX-License-Identifier: MIT
// Opens evidence as what it is, told by its content, and finds the Windows tree in it. It parses hostile bytes with
// libraries: it is meant for a confined process that can open the files that source_files() names and no others.
#pragma once

#include "host/intake/archive_view.h"
#include "host/intake/image_view.h"

#include <QStringList>

namespace intake {

enum class source_kind { folder, image, archive };

struct open_options {
    std::optional<source_kind> kind; // as what it is to be read; no value: told by content
    int volume = 0;                  // of an image; 0: the one that holds a Windows tree
    archive_limit limit;
};

// Why there is no view, for a caller that has to decide what to tell of it.
enum class source_refusal {
    none,
    not_a_source, // nothing that can be read as a folder, an image or an archive
    choose,       // several Windows trees, or a number of a volume that there is not
    no_users,     // it could be looked through, and holds no folder Users
    unreadable    // damaged, encrypted, a part of it is missing
};

struct opened_source {
    std::unique_ptr<source_view> view; // null: see problem
    source_kind kind = source_kind::folder;
    source_root root;                 // of the Windows tree in the view
    QVector<source_root> other_roots; // further ones; not empty: see problem
    int volume = 0;                   // of an image: the number of the one that is viewed
    QVector<image_volume> volumes;    // of an image
    health_report findings;
    source_refusal refusal = source_refusal::none;
    QString problem;           // for a person, in one sentence; empty when view is there
    bool is_no_source = false; // known not to be one, without any library's word
    bool lacks_users = false;  // looked through, and there is none
    QStringList reasons;       // what each library that tried said
};

// native_path: a folder or a regular file. No Windows tree in it, and several, are problems (then the view stays null).
opened_source open_source(const QByteArray& native_path, const open_options& options);

} // namespace intake
