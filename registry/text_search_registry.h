// SPDX-License-Identifier: MIT
// Gathers the values below those subkeys of the recent-documents key that hold typed search text: their names start
// with ".&input=". One record a value, in the hive's order; the key's own order list is left out.
#pragma once

#include "registry/registry.h"

class text_search_registry : public registry {
public:
    ~text_search_registry() override;
    bool run_only_multiple(hive_h* hive, int node) override;
    void run_only_multiple_paths(hive_h* hive, hive_node_h node) override;
    QString convert_data(hive_h* hive, hive_value_h value) override;
    void find_node_value_length(hive_h* hive, hive_value_h value, QString value_name) override;
    QByteArray convert_data(hive_h* hive, hive_value_h value, int unused) override;
    hive_type convert_data(hive_h* hive, hive_value_h value, QString unused) override;

protected:
    QString subkey_name; // the direct subkey of the start key that is being walked
};
