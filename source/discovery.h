// SPDX-License-Identifier: MIT
// Finds the files and folders that the extractors read: the places of places.h in every user profile.
#pragma once

#include "source/places.h"

#include <QString>
#include <QStringList>

#include <functional>

// Calls found for each place that exists, user by user in the given order, first the places in the profile, then those
// in each Cortana package folder in the byte order of the folders' names. root: ending in "/" (a root without it finds
// nothing). users: folder names, neither empty nor repeated. The flag is asked before each entry of a packages folder;
// returns false as soon as it is seen set. path: root and place joined, as text.
bool find_sources(const QString& root, const QStringList& users, const bool& cancelled,
                  const std::function<void(source_list list, const QString& path)>& found);
