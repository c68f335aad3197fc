// SPDX-License-Identifier: MIT
// The fixed lists of file extensions by which media files are told, one file a kind. Every entry is lower case with
// its leading dot and no other; the same extension may be in more than one kind (".abm" is an album of images and of
// music), as each kind is asked separately.
#pragma once

#include <cstddef>

constexpr std::size_t image_extension_count = 570;
constexpr std::size_t audio_extension_count = 571;
constexpr std::size_t video_extension_count = 136;

struct media_extension_list {
    const char* const* first;
    const char* const* last; // behind the last entry
    const char* const* begin() const { return first; }
    const char* const* end() const { return last; }
};

media_extension_list image_extensions();
media_extension_list audio_extensions();
media_extension_list video_extensions();
