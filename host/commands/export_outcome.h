// SPDX-License-Identifier: MIT
// What an export wrote and left out, told to people and to programs.
#pragma once

#include "host/exports/export_run.h"

#include <QJsonObject>
#include <QString>

// A line a format, and one for every reason why it lacks rows; at last where the files lie.
QString export_text(const export_request& request, const export_outcome& outcome);
// "database", "folder", "error" and "tables".
QJsonObject export_object(const export_request& request, const export_outcome& outcome);
// The folder that files go into when none is named.
QString export_folder_beside(const QString& database);
