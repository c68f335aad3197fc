// SPDX-License-Identifier: MIT
// Plain files of the sample source.
#pragma once

#include <QByteArray>
#include <QString>

// Writes or replaces the file, creating the folders on its way. False: it could not be written whole (reason on
// standard error).
bool write_sample_file(const QString& path, const QByteArray& content);
