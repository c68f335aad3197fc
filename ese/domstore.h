// SPDX-License-Identifier: MIT
// Reader of WebCacheV01.dat for the DOM storage.
#pragma once

#include "ese/container_reader.h"

class domstore : public container_reader {};
