// SPDX-License-Identifier: MIT
// Owners of everything that hivex hands out: the open hive, zero-terminated handle arrays, names and value data. The
// only place that names a hivex close or frees its memory. Each may be null: hivex could not hand it out, and errno
// tells why. Names and data are copies that outlive the hive.
#pragma once

#include <hivex.h>

#include <cstdlib>
#include <memory>

struct close_hive {
    void operator()(hive_h* hive) const { hivex_close(hive); }
};
struct free_hive_memory {
    void operator()(void* memory) const { std::free(memory); }
};

using hive_handle = std::unique_ptr<hive_h, close_hive>;
using hive_nodes = std::unique_ptr<hive_node_h[], free_hive_memory>;   // ends with 0
using hive_values = std::unique_ptr<hive_value_h[], free_hive_memory>; // ends with 0
using hive_text = std::unique_ptr<char[], free_hive_memory>;           // UTF-8, may hold zero bytes; ends with one
using hive_data = std::unique_ptr<char[], free_hive_memory>;           // length is told apart
