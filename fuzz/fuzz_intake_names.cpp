// SPDX-License-Identifier: MIT
// Whatever names an archive, a collection or an image's own list has: none becomes a path that leads elsewhere.
#include "host/intake/archive_names.h"
#include "host/intake/content_kind.h"
#include "host/intake/image_segments.h"
#include "host/intake/names.h"
#include "host/intake/source_root.h"
#include "host/intake/wanted_parts.h"

#include <QList>

#include <cstdint>
#include <cstdlib>

using namespace intake;

namespace {

void insist(bool holds) {
    if (!holds) {
        std::abort();
    }
}

bool are_plain_names(const QByteArray& path) {
    for (const QByteArray& name : path.split('/')) {
        if (!is_plain_name(name)) {
            return false;
        }
    }
    return true;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    const QByteArray text(reinterpret_cast<const char*>(data), static_cast<int>(size));
    const archive_path named = path_in_archive(text);
    insist(named.path.isEmpty() || (named.refusal == nullptr && are_plain_names(named.path)));
    insist(named.path.isEmpty() || are_plain_names(spelling_in_package(named.path)));
    insist(folded(folded(text)) == folded(text));
    insist(without_percents(text).size() <= text.size());
    for (const QByteArray& name : extents_of(text).names) {
        insist(is_plain_name(name));
    }
    const QVector<QByteArray> names = text.split('/').toVector();
    for (const QByteArray& name : names) {
        for (const segment_series& series : {raw_series(name, names), ewf_series(name, names)}) {
            insist(!series.names.isEmpty() && (series.names.size() == 1 || names.contains(series.names.last())));
        }
    }
    int asked = 0;
    const auto roots = find_source_roots([&](const QByteArray&) {
        ++asked;
        return names;
    });
    insist(roots.size() <= 256 * 6 && asked <= 256 * 6);
    judge_content(text, text.right(judged_head));
    return 0;
}
