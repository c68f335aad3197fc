// SPDX-License-Identifier: MIT
// Values that rows of several tables share. Pure rules on text, but for origin_of, which asks the shared run state.
#pragma once

#include <QString>
#include <QVariant>

struct step_context;

// Who and what a row came from; every table has these five columns.
struct row_origin {
    QString system_user;
    QString domain_user;
    QString source_file; // display form: below the source root, beginning with "/"
    QString os_scheme_display;
    QString source_count_name;
};

// The origin of rows that come from the file or folder source_path (full path on the examiner's machine).
row_origin origin_of(const QString& source_path, const step_context& context);

// The five as bindings take them, for every kind of row that has a member origin.
template <class Row>
QVariant system_user_of(const Row& row) {
    return row.origin.system_user;
}
template <class Row>
QVariant domain_user_of(const Row& row) {
    return row.origin.domain_user;
}
template <class Row>
QVariant source_file_of(const Row& row) {
    return row.origin.source_file;
}
template <class Row>
QVariant os_scheme_of(const Row& row) {
    return row.origin.os_scheme_display;
}
template <class Row>
QVariant source_count_of(const Row& row) {
    return row.origin.source_count_name;
}

// path without root in front and with "/" in its place; a path outside root is kept whole.
QString path_below_root(const QString& path, const QString& root);

// FILETIME (100 ns since 1601-01-01 UTC) as decimal text to Unix seconds, truncating toward zero. 0 for an empty text,
// for text that is no number and for values not above 0.
qint64 filetime_to_unix_seconds(const QString& text);

// "yyyy-MM-ddThh:mm:ssZ" read as local time of this machine, to Unix seconds. 0 for an empty text; a text that does
// not parse gives what an invalid QDateTime gives.
qint64 iso_text_to_unix_seconds(const QString& text);

// A map query link for the two coordinates, without escaping or trimming.
QString map_url(const QString& latitude, const QString& longitude);
