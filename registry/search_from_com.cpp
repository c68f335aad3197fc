// SPDX-License-Identifier: MIT
// The walk stops at the direct subkeys.
#include "registry/search_from_com.h"

search_from_com::~search_from_com() = default;

void search_from_com::run_only_multiple_paths(hive_h* hive, hive_node_h node) {
    const QMap<QString, int> children = prepare_the_node_key_child(hive, node, false);
    for (auto child = children.constBegin(); child != children.constEnd(); ++child) {
        my_data_inst_apps record;
        current_record = &record;
        if (child.key().startsWith(QLatin1String(".com"))) {
            record.key_name = child.key();
            record_list.append(record);
        }
    }
    current_record = nullptr;
}
