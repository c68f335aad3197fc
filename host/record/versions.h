// SPDX-License-Identifier: MIT
// What the program and the libraries it works with are.
#pragma once

#include <QString>

// One line each; needs the application object.
QString version_text();
