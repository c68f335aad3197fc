// SPDX-License-Identifier: MIT
// Gathers the names of those subkeys of the file-extension key that start with ".com": the tails of search addresses,
// filed as if they were file extensions. No value is read; of a record only key_name is filled.
#pragma once

#include "registry/registry.h"

class search_from_com : public registry {
public:
    ~search_from_com() override;
    void run_only_multiple_paths(hive_h* hive, hive_node_h node) override;
};
