// SPDX-License-Identifier: MIT
// Single values in the form in which an ESE record stores them.
#include "samples/ese_bytes.h"
#include "samples/ese_columns.h"
#include "samples/ese_text.h"

#include <cmath>
#include <cstring>
#include <limits>

namespace {

[[noreturn]] void refuse(const ese_placed_column& column, const char* what) {
    throw ese_error(std::string("ESE writer: ") + what + " does not go into column " + column.column.name);
}

template <typename T>
void append_integer(std::string& out, std::int64_t number, const ese_placed_column& column) {
    if (number < static_cast<std::int64_t>(std::numeric_limits<T>::min()) ||
        number > static_cast<std::int64_t>(std::numeric_limits<T>::max())) {
        refuse(column, "number out of range");
    }
    append_le(out, static_cast<T>(number));
}

template <typename T>
void append_float(std::string& out, T number) {
    char bytes[sizeof(T)];
    std::memcpy(bytes, &number, sizeof(T)); // both sides are little-endian IEEE numbers
    out.append(bytes, sizeof(T));
}

void append_single(std::string& out, double number, const ese_placed_column& column) {
    if (std::isfinite(number) && std::fabs(number) > static_cast<double>(std::numeric_limits<float>::max())) {
        refuse(column, "number out of range");
    }
    append_float(out, static_cast<float>(number));
}

struct storing {
    std::string& out;
    const ese_placed_column& column;

    void operator()(std::monostate) const {}

    void operator()(std::int64_t number) const {
        switch (column.column.type) {
        case ese_type::boolean:
            out.push_back(static_cast<char>(number != 0 ? 0xFF : 0));
            return;
        case ese_type::unsigned_8:
            return append_integer<std::uint8_t>(out, number, column);
        case ese_type::signed_16:
            return append_integer<std::int16_t>(out, number, column);
        case ese_type::unsigned_16:
            return append_integer<std::uint16_t>(out, number, column);
        case ese_type::signed_32:
            return append_integer<std::int32_t>(out, number, column);
        case ese_type::unsigned_32:
            return append_integer<std::uint32_t>(out, number, column);
        case ese_type::currency:
        case ese_type::signed_64:
        case ese_type::date_time:
            return append_le(out, number);
        case ese_type::float_32:
        case ese_type::float_64:
            return (*this)(static_cast<double>(number));
        default:
            refuse(column, "number");
        }
    }

    void operator()(double number) const {
        if (column.column.type == ese_type::float_32) {
            append_single(out, number, column);
        } else if (column.column.type == ese_type::float_64 || column.column.type == ese_type::date_time) {
            append_float(out, number);
        } else {
            refuse(column, "number with a fraction");
        }
    }

    void operator()(const std::string& utf8) const {
        if (!ese_is_text(column.column.type)) {
            refuse(column, "text");
        }
        ese_append_text(out, utf8, column.column.code_page);
    }

    void operator()(const ese_value::raw& raw) const { out = raw.data; }
};

// Fixed columns always have their full size: text is filled up with spaces, binary data with zeros.
void fill_up(std::string& out, const ese_placed_column& column) {
    const ese_type type = column.column.type;
    const bool may_grow = type == ese_type::text || type == ese_type::binary;
    if (out.size() > column.size || (out.size() < column.size && !may_grow)) {
        refuse(column, "value of that size");
    }
    const bool wide = column.column.code_page == ese_code_page::utf_16;
    while (out.size() < column.size) {
        out.push_back(type == ese_type::text && (!wide || out.size() % 2 == 0) ? ' ' : '\0');
    }
}

} // namespace

void ese_store_value(std::string& out, const ese_value& value, const ese_placed_column& column) {
    out.clear();
    std::visit(storing{out, column}, value.content());
    if (column.is_fixed()) {
        fill_up(out, column);
    }
}
