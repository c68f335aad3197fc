// SPDX-License-Identifier: MIT
// Reader of WebCacheV01.dat for the DOM storage.
#pragma once

#include "ese/webcache_reader.h"

class domstore : public webcache_reader {};
