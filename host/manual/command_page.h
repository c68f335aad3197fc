// SPDX-License-Identifier: MIT
// cortana(1).
#pragma once

#include <QString>

// The page as roff, made of the table of options.
QString command_page();
