// SPDX-License-Identifier: MIT
// Gives the iOS front's meta-object a home.
#include "plugin/cortana_ios_uid.h"
