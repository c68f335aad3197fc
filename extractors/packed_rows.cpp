// SPDX-License-Identifier: MIT
// Packing and unpacking of rows.
#include "extractors/packed_rows.h"

#include <QString>

#include <algorithm>
#include <cstring>

namespace {

// The marks. Most texts of evidence are Latin-1 and take one byte a character.
constexpr char number_mark = 'n';
constexpr char latin1_mark = '1';
constexpr char utf16_mark = '2';

bool is_latin1(const QString& text) {
    return std::all_of(text.cbegin(), text.cend(), [](QChar character) { return character.unicode() <= 0xFF; });
}

// Reads packed values one after another.
class unpacker {
public:
    explicit unpacker(const char* begin) : at(begin) {}
    const char* position() const { return at; }

    QVariant next() {
        const char mark = *at++;
        if (mark == number_mark) {
            return number<qint64>();
        }
        const int length = number<int>();
        return mark == latin1_mark ? latin1_text(length) : utf16_text(length);
    }

private:
    template <class Number>
    Number number() {
        Number read = 0;
        std::memcpy(&read, at, sizeof(read));
        at += sizeof(read);
        return read;
    }
    QString latin1_text(int length) {
        const char* const begin = at;
        at += length;
        return QString::fromLatin1(begin, length);
    }
    QString utf16_text(int length) {
        QString text(length, Qt::Uninitialized);
        const std::size_t size = static_cast<std::size_t>(length) * sizeof(QChar);
        std::memcpy(text.data(), at, size);
        at += size;
        return text;
    }

    const char* at;
};

} // namespace

void packed_rows::append(const QVector<QVariant>& values) {
    for (const QVariant& value : values) {
        if (value.type() == QVariant::String) {
            append_text(value.toString());
        } else {
            const qint64 number = value.toLongLong();
            bytes.push_back(number_mark);
            append_bytes(&number, sizeof(number));
        }
    }
    ends.push_back(bytes.size());
}

QVector<QVariant> packed_rows::at(int row) const {
    const auto index = static_cast<std::size_t>(row);
    unpacker packed(bytes.data() + (index == 0 ? 0 : ends[index - 1]));
    QVector<QVariant> values;
    while (packed.position() < bytes.data() + ends[index]) {
        values.append(packed.next());
    }
    return values;
}

void packed_rows::append_text(const QString& text) {
    const int length = text.size();
    const bool narrow = is_latin1(text);
    bytes.push_back(narrow ? latin1_mark : utf16_mark);
    append_bytes(&length, sizeof(length));
    if (narrow) {
        append_bytes(text.toLatin1().constData(), static_cast<std::size_t>(length));
    } else {
        append_bytes(text.constData(), static_cast<std::size_t>(length) * sizeof(QChar));
    }
}

void packed_rows::append_bytes(const void* from, std::size_t count) {
    const auto* const begin = static_cast<const char*>(from);
    bytes.insert(bytes.end(), begin, begin + count);
}
