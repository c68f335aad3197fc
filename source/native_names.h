// SPDX-License-Identifier: MIT
// Names that the file system has need not be UTF-8, and a QString cannot carry those: what to show of them.
#pragma once

#include <QByteArray>
#include <QString>

bool is_utf8(const QByteArray& bytes);

// The path as text for people. When it is not UTF-8, its bytes above 7F show as \xNN, so it names no file then.
QString shown_path(const QByteArray& native_path);

// The system's own words for an errno value.
QString error_words(int error);
