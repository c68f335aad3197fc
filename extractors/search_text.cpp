// SPDX-License-Identifier: MIT
// The cutters differ from each other on purpose: each follows the form in which its key keeps a search.
#include "extractors/search_text.h"

#include "common/text_decoding.h"

namespace {

const QByteArray text_mark = QByteArrayLiteral("search?q=");
const QByteArray time_mark = QByteArrayLiteral("sbts=");

QString whole_seconds(const QByteArray& bytes) {
    constexpr int digits_of_milliseconds = 13;
    QString time = utf8_until_nul(bytes);
    if (time.size() == digits_of_milliseconds) {
        time.chop(3);
    }
    return time;
}

} // namespace

QString search_text_in_value(const QByteArray& value_data) {
    if (value_data.trimmed().isEmpty()) {
        return QStringLiteral("");
    }
    // Deliberate: the marks are searched as bytes, in UTF-16 data too; an "&" at the start counts as none, and the text
    // is not percent-decoded here, unlike in a subkey's name.
    const int end = value_data.indexOf('&');
    if (end <= 0) {
        return QString();
    }
    QByteArray text = value_data.left(end);
    text.replace('\0', QByteArray());
    if (text.startsWith(text_mark)) {
        text.replace(text_mark, QByteArray());
    }
    return utf8_until_nul(text);
}

QString search_time_in_value(const QByteArray& value_data) {
    if (value_data.trimmed().isEmpty()) {
        return QStringLiteral("");
    }
    const int mark = value_data.indexOf(time_mark);
    if (mark < 0) {
        return QString();
    }
    const int start = mark + time_mark.size();
    const int end = value_data.indexOf('.', start);
    return end < 0 ? QString() : whole_seconds(value_data.mid(start, end - start));
}

QString search_text_in_name(const QByteArray& key_name) {
    if (key_name.trimmed().isEmpty()) {
        return QStringLiteral("");
    }
    const int mark = key_name.indexOf(text_mark);
    if (mark < 0) {
        return QString();
    }
    const int start = mark + text_mark.size();
    const int end = key_name.indexOf('&', start);
    return end < 0 ? QString() : utf8_until_nul(QByteArray::fromPercentEncoding(key_name.mid(start, end - start)));
}

QString search_time_in_name(const QByteArray& key_name) {
    if (key_name.trimmed().isEmpty()) {
        return QStringLiteral("");
    }
    // Deliberate: stricter and looser than in a value: a mark at the start counts as none, and no "." ends the time.
    const int mark = key_name.indexOf(time_mark);
    return mark <= 0 ? QString() : whole_seconds(key_name.mid(mark + time_mark.size()));
}
