// SPDX-License-Identifier: MIT
// Gives the macOS front's meta-object a home.
#include "plugin/cortana_macos.h"
