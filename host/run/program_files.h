// SPDX-License-Identifier: MIT
// Where the program's own parts lie: in a build beside it, installed in a folder of its own.
#pragma once

#include <QString>

// The absolute path of a part of the program by its file name: beside the program where it stands there, else
// where it was installed with it. Needs the application object.
QString program_file(const QString& name);
