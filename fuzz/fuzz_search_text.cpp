// SPDX-License-Identifier: MIT
// Any bytes go through the four search cutters without harm, and no cut is longer than what it was cut from.
#include "extractors/search_text.h"

#include <cstdint>
#include <cstdlib>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    const QByteArray bytes(reinterpret_cast<const char*>(data), static_cast<int>(size));
    for (const auto cut : {search_text_in_value, search_time_in_value, search_text_in_name, search_time_in_name}) {
        const QString text = cut(bytes);
        if (text.size() > bytes.size() || text.contains(QChar::Null)) {
            std::abort();
        }
    }
    return 0;
}
