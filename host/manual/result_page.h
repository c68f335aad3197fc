// SPDX-License-Identifier: MIT
// cortana-result(5).
#pragma once

#include <QString>

// The page as roff: the files of a result, and the tables as the exports describe them.
QString result_page();
