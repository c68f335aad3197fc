// SPDX-License-Identifier: MIT
// SHA-256 of a file that is only looked at.
#pragma once

#include <QByteArray>
#include <QString>

// 64 small hexadecimal digits; empty and errno when the file cannot be read to its end. Leaves its access time alone
// where the system allows that.
QByteArray digest_of_file(const QString& path);
