// SPDX-License-Identifier: MIT
// Reader of WebCacheV01.dat for the cookies.
#pragma once

#include "ese/container_reader.h"

class cookies : public container_reader {};
