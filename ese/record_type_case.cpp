// SPDX-License-Identifier: MIT
// One ESE value as text, by column type. A failing read counts as 0, as no bytes, or as zero bytes; nothing is told.
#include "ese/specific_table.h"
#include "ese/value_buffer.h"

#include <functional>

namespace {

constexpr size_t ordinary_value = 1024;
constexpr size_t large_value = 102400;

// Deliberate: libesedb does not look at a record's NULL bits, and Windows leaves these bytes in a fixed column that is
// NULL. Taken for a value, a reminder that is not yet completed would get a completion time in the year 11228.
constexpr uint64_t null_filler = 0x2A2A2A2A2A2A2A2A;

struct value_place {
    libesedb_record_t* record;
    int index;
};

template <class Number>
Number number_or_zero(int (*get)(libesedb_record_t*, int, Number*, libesedb_error_t**), const value_place& at) {
    Number number{};
    return get(at.record, at.index, &number, nullptr) == ese::success ? number : Number{};
}

template <class Number>
bool is_null_filler(const Number& number) {
    static_assert(sizeof(number) == sizeof(null_filler), "only 64-bit columns are filled so");
    uint64_t bits = 0;
    std::memcpy(&bits, &number, sizeof(bits));
    return bits == null_filler;
}

QByteArray boolean_text(const value_place& at) {
    const uint8_t byte = number_or_zero<uint8_t>(libesedb_record_get_value_boolean, at);
    return QByteArray::number(uint{byte}).contains('1') ? QByteArrayLiteral("true") : QByteArrayLiteral("false");
}

QByteArray signed_64bit_text(int (*get)(libesedb_record_t*, int, uint64_t*, libesedb_error_t**),
                             const value_place& at) {
    const uint64_t number = number_or_zero(get, at);
    return QByteArray::number(is_null_filler(number) ? qint64{0} : static_cast<qint64>(number));
}

// A sized read: two calls of libesedb, of which the first tells the size.
using size_call = int (*)(libesedb_record_t*, int, size_t*, libesedb_error_t**);
using data_call = int (*)(libesedb_record_t*, int, uint8_t*, size_t, libesedb_error_t**);

template <size_t Capacity>
void read_value(ese::value_buffer<Capacity>& value, const value_place& at, size_call get_size, data_call get_data) {
    value.fill(number_or_zero(get_size, at),
               [&](uint8_t* buffer, size_t size) { return get_data(at.record, at.index, buffer, size, nullptr); });
}

QByteArray float_text(const value_place& at) {
    ese::value_buffer<ordinary_value> value;
    read_value(value, at, libesedb_record_get_value_data_size, libesedb_record_get_value_data);
    float number = 0;
    // Deliberate: the bytes, because libesedb's getter for this type answers success with 0 for every value.
    if (value.size() == sizeof(number)) {
        std::memcpy(&number, value.data(), sizeof(number));
    }
    return QByteArray::number(static_cast<double>(number), 'g', 6);
}

QByteArray double_text(const value_place& at) {
    const double number = number_or_zero<double>(libesedb_record_get_value_floating_point_64bit, at);
    return QByteArray::number(is_null_filler(number) ? 0.0 : number, 'g', 6);
}

// Deliberate: the value counts as text, so that its hexadecimal form ends before the first zero byte and a GUID that
// begins with one is empty. Ids of other tables are compared with these texts.
QByteArray hex_until_zero_byte(const value_place& at, bool is_64bit) {
    ese::value_buffer<ordinary_value> value;
    read_value(value, at, libesedb_record_get_value_data_size, libesedb_record_get_value_data);
    if (is_64bit && value.size() == sizeof(null_filler) && std::memcmp(value.data(), &null_filler, value.size()) == 0) {
        return {};
    }
    return value.hex_of_text();
}

template <size_t Capacity>
QByteArray binary_hex(const value_place& at) {
    ese::value_buffer<Capacity> value;
    read_value(value, at, libesedb_record_get_value_binary_data_size, libesedb_record_get_value_binary_data);
    return value.hex();
}

template <size_t Capacity>
QByteArray text_in_record(const value_place& at) {
    ese::value_buffer<Capacity> value;
    read_value(value, at, libesedb_record_get_value_utf8_string_size, libesedb_record_get_value_utf8_string);
    return value.text();
}

QByteArray raw_text(const value_place& at) {
    ese::value_buffer<ordinary_value> value;
    read_value(value, at, libesedb_record_get_value_data_size, libesedb_record_get_value_data);
    return value.text();
}

// Asked before every read of a large value: a plain read of a long one yields the four bytes that refer to it.
bool is_long(const value_place& at) {
    return libesedb_record_is_long_value(at.record, at.index, nullptr) == ese::success;
}

using permission = std::function<bool(quint64 bytes)>;

QByteArray long_binary_hex(const value_place& at, const permission& may) {
    const ese::long_value_handle long_value = ese::get_long_value(at.record, at.index);
    size64_t size = 0;
    if (libesedb_long_value_get_data_size(long_value.get(), &size, nullptr) != ese::success || !may(size)) {
        return {};
    }
    ese::value_buffer<0> value;
    value.fill(size, [&](uint8_t* buffer, size_t length) {
        return libesedb_long_value_get_data(long_value.get(), buffer, length, nullptr);
    });
    return value.hex();
}

QByteArray long_text(const value_place& at, const permission& may) {
    const ese::long_value_handle long_value = ese::get_long_value(at.record, at.index);
    size_t size = 0;
    if (libesedb_long_value_get_utf8_string_size(long_value.get(), &size, nullptr) != ese::success || !may(size)) {
        return {};
    }
    ese::value_buffer<0> value;
    value.fill(size, [&](uint8_t* buffer, size_t length) {
        return libesedb_long_value_get_utf8_string(long_value.get(), buffer, length, nullptr);
    });
    return value.text();
}

} // namespace

QByteArray specific_table::record_type_case(libesedb_record_t* record, int value_index, unsigned int column_type,
                                            libesedb_error_t*) {
    const value_place at{record, value_index};
    const auto may = [this](quint64 bytes) { return this->may_hand_out(bytes); };
    switch (column_type) {
    case LIBESEDB_COLUMN_TYPE_BOOLEAN:
        return boolean_text(at);
    case LIBESEDB_COLUMN_TYPE_INTEGER_8BIT_UNSIGNED:
        return QByteArray::number(uint{number_or_zero<uint8_t>(libesedb_record_get_value_8bit, at)});
    // Deliberate: signed columns of 16 and 32 bits are printed unsigned too (-1 is 65535); stored rows hold such texts.
    case LIBESEDB_COLUMN_TYPE_INTEGER_16BIT_SIGNED:
    case LIBESEDB_COLUMN_TYPE_INTEGER_16BIT_UNSIGNED:
        return QByteArray::number(uint{number_or_zero<uint16_t>(libesedb_record_get_value_16bit, at)});
    case LIBESEDB_COLUMN_TYPE_INTEGER_32BIT_SIGNED:
    case LIBESEDB_COLUMN_TYPE_INTEGER_32BIT_UNSIGNED:
        return QByteArray::number(uint{number_or_zero<uint32_t>(libesedb_record_get_value_32bit, at)});
    case LIBESEDB_COLUMN_TYPE_INTEGER_64BIT_SIGNED:
        return signed_64bit_text(libesedb_record_get_value_64bit, at);
    case LIBESEDB_COLUMN_TYPE_DATE_TIME:
        return signed_64bit_text(libesedb_record_get_value_filetime, at);
    case LIBESEDB_COLUMN_TYPE_FLOAT_32BIT:
        return float_text(at);
    case LIBESEDB_COLUMN_TYPE_DOUBLE_64BIT:
        return double_text(at);
    case LIBESEDB_COLUMN_TYPE_CURRENCY:
        return hex_until_zero_byte(at, true);
    case LIBESEDB_COLUMN_TYPE_GUID:
        return hex_until_zero_byte(at, false);
    case LIBESEDB_COLUMN_TYPE_BINARY_DATA:
        return binary_hex<ordinary_value>(at);
    case LIBESEDB_COLUMN_TYPE_LARGE_BINARY_DATA:
        return is_long(at) ? long_binary_hex(at, may) : binary_hex<large_value>(at);
    case LIBESEDB_COLUMN_TYPE_TEXT:
        return text_in_record<ordinary_value>(at);
    case LIBESEDB_COLUMN_TYPE_LARGE_TEXT:
    case LIBESEDB_COLUMN_TYPE_SUPER_LARGE_VALUE:
        return is_long(at) ? long_text(at, may) : text_in_record<large_value>(at);
    default:
        return raw_text(at);
    }
}
