// SPDX-License-Identifier: MIT
// Names count upwards: a decimal number, letters, or EWF's mixture of both.
#include "host/intake/image_segments.h"

#include "host/intake/names.h"

#include <QList>

#include <algorithm>
#include <functional>

namespace intake {
namespace {

using segment_name = std::function<QByteArray(int number)>; // empty: no such number

// The names from number on for as long as they are there; a later one that is there shows that one is missing.
segment_series series_from(int number, const segment_name& name_of, const QVector<QByteArray>& siblings) {
    segment_series series;
    for (; siblings.contains(name_of(number)); ++number) {
        series.names.append(name_of(number));
    }
    constexpr int most_missing = 200; // how far is looked for a later one
    for (int later = number + 1; later < number + most_missing; ++later) {
        if (siblings.contains(name_of(later))) {
            series.missing = name_of(number);
            return series;
        }
    }
    return series;
}

QByteArray in_case_of(const QByteArray& model, const QByteArray& text) {
    return model.toLower() == model ? text.toLower() : text;
}

// Letters that count from "AA": two or three of them.
QByteArray letters(int number, int count) {
    QByteArray text(count, 'A');
    for (int i = count - 1; i >= 0; --i, number /= 26) {
        text[i] = static_cast<char>('A' + number % 26);
    }
    return text;
}

segment_series numbered_series(const QByteArray& stem, int digits, int given, const QVector<QByteArray>& siblings) {
    const segment_name name_of = [&](int number) {
        const QByteArray text = QByteArray::number(number).rightJustified(digits, '0');
        return text.size() == digits ? stem + text : QByteArray();
    };
    const int first = siblings.contains(name_of(0)) ? 0 : 1;
    segment_series series = series_from(first, name_of, siblings);
    if (series.missing.isEmpty() && series.names.size() + first <= given) {
        series.missing = name_of(first + series.names.size());
    }
    return series;
}

} // namespace

segment_series raw_series(const QByteArray& name, const QVector<QByteArray>& siblings) {
    const int dot = name.lastIndexOf('.');
    const QByteArray extension = dot < 0 ? QByteArray() : name.mid(dot + 1);
    const bool all_digits =
        std::all_of(extension.begin(), extension.end(), [](char c) { return c >= '0' && c <= '9'; });
    if (extension.size() >= 2 && extension.size() <= 5 && all_digits) {
        const segment_series series =
            numbered_series(name.left(dot + 1), extension.size(), extension.toInt(), siblings);
        return series.names.isEmpty() ? segment_series{{name}, series.missing} : series;
    }
    if (name.endsWith("aa")) {
        const QByteArray stem = name.left(name.size() - 2);
        constexpr int most = 26 * 26;
        const segment_name name_of = [&](int number) {
            return number < most ? stem + letters(number, 2).toLower() : QByteArray();
        };
        return series_from(0, name_of, siblings);
    }
    return {{name}, {}};
}

segment_series ewf_series(const QByteArray& name, const QVector<QByteArray>& siblings) {
    const int dot = name.lastIndexOf('.');
    const QByteArray extension = name.mid(dot + 1);
    if (dot < 0 || extension.size() != 3) {
        return {{name}, {}};
    }
    const QByteArray first_letter = extension.left(1).toUpper();
    const segment_name name_of = [&](int number) {
        constexpr int numbered = 100;
        constexpr int lettered = 26 * 26;
        if (number < numbered) {
            const QByteArray digits = QByteArray::number(number).rightJustified(2, '0');
            return name.left(dot + 1) + in_case_of(extension, first_letter + digits);
        }
        const int past = (number - numbered) / lettered;
        const char letter = static_cast<char>(first_letter[0] + past);
        return letter > 'Z'
                   ? QByteArray()
                   : name.left(dot + 1) + in_case_of(extension, letter + letters((number - numbered) % lettered, 2));
    };
    const segment_series series = series_from(1, name_of, siblings);
    return series.names.isEmpty() ? segment_series{{name}, name_of(1)} : series;
}

ewf_end end_of_ewf_segment(const QByteArray& tail) {
    return tail.startsWith(QByteArray("done\0", 5))   ? ewf_end::last_segment
           : tail.startsWith(QByteArray("next\0", 5)) ? ewf_end::another_follows
                                                      : ewf_end::cut_off;
}

vmdk_extents extents_of(const QByteArray& descriptor) {
    vmdk_extents extents;
    for (const QByteArray& raw_line : descriptor.split('\n')) {
        const QByteArray line = raw_line.trimmed();
        const QByteArray key = line.left(line.indexOf('=')).trimmed().toLower();
        if (key == "parentcid" && line.mid(line.indexOf('=') + 1).trimmed().toLower() != "ffffffff") {
            extents.has_parent = true;
        }
        const int open = line.indexOf('"');
        const int close = line.lastIndexOf('"');
        const bool is_extent = line.startsWith("RW ") || line.startsWith("RDONLY ") || line.startsWith("NOACCESS ");
        if (!is_extent || close <= open) {
            continue;
        }
        const QByteArray name = line.mid(open + 1, close - open - 1);
        if (!is_plain_name(name) || name.contains('\\')) {
            extents.outside = name;
        } else {
            extents.names.append(name);
        }
    }
    return extents;
}

} // namespace intake
