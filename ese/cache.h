// SPDX-License-Identifier: MIT
// Reader of WebCacheV01.dat for the cached files.
#pragma once

#include "ese/webcache_reader.h"

class cache : public webcache_reader {};
