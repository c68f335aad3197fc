// SPDX-License-Identifier: MIT
// Files and folders by the names that the file system has for them. Evidence may hold names that are not UTF-8, and a
// QString cannot carry those.
#pragma once

#include "source/real_location.h"

#include <QByteArray>
#include <QString>
#include <QVector>

// The path as text. When it is not UTF-8, its bytes above 7F show as \xNN.
QString text_of(const QByteArray& native_path);
bool is_utf8(const QByteArray& bytes);

// The system's own words for an errno value.
QString error_words(int error);

// The names in a folder in byte order, without "." and "..". error: the errno value, 0 when all of it was read.
struct folder_listing {
    QVector<QByteArray> names;
    int error = 0;
};
folder_listing list_folder(const QByteArray& folder);
