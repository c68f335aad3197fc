// SPDX-License-Identifier: MIT
// Reader of WebCacheV01.dat for the cookies.
#pragma once

#include "ese/webcache_reader.h"

class cookies : public webcache_reader {};
