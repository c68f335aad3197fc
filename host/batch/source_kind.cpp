// SPDX-License-Identifier: MIT
// A raw image has no mark, and documents are archives too: there the name decides.
#include "host/batch/source_kind.h"

#include <algorithm>

namespace batch {
namespace {

using intake::content_kind;

template <std::size_t count>
bool ends_with_one_of(const QByteArray& name, const char* const (&endings)[count]) {
    const QByteArray small = name.toLower();
    return std::any_of(std::begin(endings), std::end(endings),
                       [&](const char* ending) { return small.endsWith(ending); });
}

constexpr const char* archive_endings[] = {".zip",  ".7z",     ".tar",     ".tgz",    ".tbz2",    ".txz",
                                           ".tzst", ".tar.gz", ".tar.bz2", ".tar.xz", ".tar.zst", ".tar.lz4"};
constexpr const char* raw_endings[] = {".dd", ".raw", ".img", ".000", ".001", ".aa"};

// Segments of an EWF image are called E01 to E99, EAA to EZZ, FAA, ...; only the first one names the image.
judged_file judge_ewf(const QByteArray& name, const QSet<QByteArray>& siblings) {
    const QByteArray ending = name.mid(name.lastIndexOf('.') + 1);
    if (ending.size() != 3 || ending.endsWith("01")) {
        return {source_kind::image};
    }
    constexpr const char* first_endings[] = {"E01", "e01", "S01", "s01"};
    const bool has_first = std::any_of(std::begin(first_endings), std::end(first_endings),
                                       [&](const char* first) { return siblings.contains(name.chopped(3) + first); });
    return {source_kind::none, has_first ? nullptr : "its first segment is missing"};
}

judged_file judge_unmarked(const QByteArray& name, const QSet<QByteArray>& siblings, bool is_named) {
    if (name.toLower().endsWith(".tar")) {
        return {source_kind::archive};
    }
    const bool has_zeroth = name.endsWith(".001") && siblings.contains(name.chopped(1) + '0');
    return {is_named || (ends_with_one_of(name, raw_endings) && !has_zeroth) ? source_kind::image : source_kind::none};
}

} // namespace

judged_file judge_file(const QByteArray& name, const intake::judged_content& content, const QSet<QByteArray>& siblings,
                       bool is_named) {
    const bool looks_like_one =
        is_named || ends_with_one_of(name, archive_endings) || ends_with_one_of(name, raw_endings);
    switch (content.kind) {
    case content_kind::ewf:
        return is_named ? judged_file{source_kind::image} : judge_ewf(name, siblings);
    case content_kind::vmdk:
    case content_kind::vhd:
        return {source_kind::image};
    case content_kind::archive:
        return {looks_like_one ? source_kind::archive : source_kind::none};
    case content_kind::empty:
        return {source_kind::none, looks_like_one ? "it is empty" : nullptr};
    case content_kind::not_handled:
        return {source_kind::none, content.not_handled};
    case content_kind::unknown:
        break;
    }
    return judge_unmarked(name, siblings, is_named);
}

} // namespace batch
