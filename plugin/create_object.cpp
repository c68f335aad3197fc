// SPDX-License-Identifier: MIT
// The library's only exported symbol.
#include "plugin/cortana.h"

extern "C" __attribute__((visibility("default"))) void* create_object() {
    // The host reads the pointer as a host_interface; single inheritance keeps the address.
    return static_cast<host_interface*>(new cortana);
}
