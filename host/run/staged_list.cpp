// SPDX-License-Identifier: MIT
// Paths are bytes, as the file system has them.
#include "host/run/staged_list.h"

#include <algorithm>
#include <filesystem>

namespace {

constexpr int most_kept = 500000; // more than a worker may stage

} // namespace

void staged_list::plan(const QVector<QByteArray>& sources) {
    for (const QByteArray& source : sources) {
        if (pending.size() < most_kept) {
            pending.insert(source);
        }
    }
}

void staged_list::add(const staged_file& file) {
    const auto known = places.constFind(file.entry.path);
    if (known != places.constEnd()) {
        list[*known] = file;
    } else if (list.size() < most_kept) {
        places.insert(file.entry.path, list.size());
        list.append(file);
    }
    pending.remove(file.entry.source);
}

const staged_file* staged_list::at(const QByteArray& path) const {
    const auto known = places.constFind(path);
    return known != places.constEnd() ? &list[*known] : nullptr;
}

QVector<QByteArray> staged_list::missing() const {
    QVector<QByteArray> paths;
    for (const QByteArray& source : pending) {
        paths.append(source);
    }
    std::sort(paths.begin(), paths.end());
    return paths;
}

void staged_list::remove_others(const QByteArray& folder) const {
    std::error_code ignored; // a file that stays is no copy of any record
    std::vector<std::filesystem::path> others;
    const std::filesystem::path top(folder.constData());
    for (std::filesystem::recursive_directory_iterator entry(top, ignored), end; entry != end;
         entry.increment(ignored)) {
        const QByteArray path = QByteArray::fromStdString(entry->path().lexically_relative(top).native());
        if (!entry->is_directory(ignored) && !places.contains(path)) {
            others.push_back(entry->path());
        }
    }
    for (const std::filesystem::path& other : others) {
        std::filesystem::remove(other, ignored);
    }
}

bool staged_list::holds_files() const {
    return std::any_of(list.begin(), list.end(),
                       [](const staged_file& file) { return file.entry.kind == intake::entry_kind::file; });
}
