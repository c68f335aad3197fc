// SPDX-License-Identifier: MIT
// A finished folder of a local disk is brought to a shared one: it is seen there whole or not at all.
#pragma once

#include <QJsonObject>
#include <QString>

namespace batch {

// Copies the regular files and folders of finished, hidden files left out, to PARENT/.NAME.partial (what is there is
// removed), or moves it there within one file system; brings all to the disk, and gives it its name. One that has the
// name is put aside first and removed afterwards. The caller sees to it that no other does the same. False: error says
// why, and what had the name still has it, or has it again after take_back().
bool publish_folder(const QString& finished, const QString& parent, const QString& name, QString& error);

// Gives a folder that was put aside its name back, when a run died before the new one had it.
void take_back(const QString& parent, const QString& name);

// With all that is in it; links are not followed. What is not there is gone already.
void remove_folder(const QString& folder);

// The JSON object in a file; an empty one when there is none that can be read.
QJsonObject object_in(const QString& file);

// Writes a small file whole: beside it first, then to the disk, then renamed.
bool write_whole(const QString& file, const QByteArray& content, QString& error);

} // namespace batch
