// SPDX-License-Identifier: MIT
// Ids made from names of evidence. A rule over bytes alone.
#pragma once

#include <QByteArray>
#include <QSet>
#include <QString>

namespace batch {

// Ids given so far, in small letters.
using taken_ids = QSet<QString>;

// The path below the searched folder as an id (see is_id()): what an id cannot hold becomes "_", a number makes it one
// that nobody has in any upper and lower case. It is taken then.
QString id_of(const QByteArray& path, taken_ids& taken);

} // namespace batch
