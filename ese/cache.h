// SPDX-License-Identifier: MIT
// Reader of WebCacheV01.dat for the cached files.
#pragma once

#include "ese/container_reader.h"

class cache : public container_reader {};
