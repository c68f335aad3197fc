// SPDX-License-Identifier: MIT
// Any bytes are cut into entities without harm, and never into more of them than the text has room for.
#include "extractors/graph_text.h"

#include <cstdint>
#include <cstdlib>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    const QByteArray content(reinterpret_cast<const char*>(data), static_cast<int>(size));
    graph_text_cutter cutter(content);
    graph_entity entity;
    int entities = 0;
    while (cutter.next(entity)) {
        ++entities;
        if (entity.search_content.isNull() || entity.latitude.isNull() || entity.phone.isNull()) {
            std::abort();
        }
    }
    if (entities > content.count("originalName")) {
        std::abort();
    }
    return 0;
}
