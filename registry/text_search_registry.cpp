// SPDX-License-Identifier: MIT
// Keeps raw data: the search text and its time are cut out of it by the extractor.
#include "registry/text_search_registry.h"

text_search_registry::~text_search_registry() = default;

void text_search_registry::run_only_multiple_paths(hive_h* hive, hive_node_h node) {
    const QMap<QString, int> children = prepare_the_node_key_child(hive, node, false);
    for (auto child = children.constBegin(); child != children.constEnd(); ++child) {
        subkey_name = child.key();
        if (run_only_multiple(hive, *child)) {
            continue;
        }
        my_data_inst_apps record;
        current_record = &record;
        values_of_the_node(hive, static_cast<hive_node_h>(*child));
        current_record = nullptr;
    }
}

bool text_search_registry::run_only_multiple(hive_h* hive, int node) {
    const QMap<QString, int> children = prepare_the_node_key_child(hive, static_cast<hive_node_h>(node), false);
    note_timestamp(hive, static_cast<hive_node_h>(node));
    if (children.isEmpty()) {
        return false;
    }
    my_data_inst_apps record;
    for (const int child : children) {
        current_record = &record;
        values_of_the_node(hive, static_cast<hive_node_h>(child));
        run_only_multiple_recurse(hive, child, {});
    }
    current_record = nullptr;
    return true;
}

void text_search_registry::find_node_value_length(hive_h* hive, hive_value_h value, QString value_name) {
    if (current_record == nullptr || !subkey_name.startsWith(QLatin1String(".&input=")) ||
        value_name.startsWith(QLatin1String("MRUListEx"))) {
        return;
    }
    current_record->value_name = value_name;
    current_record->value_data = convert_data(hive, value, 1);
    current_record->key_name = subkey_name;
    record_list.append(*current_record);
}

QString text_search_registry::convert_data(hive_h* hive, hive_value_h value) {
    return registry::convert_data(hive, value);
}

QByteArray text_search_registry::convert_data(hive_h* hive, hive_value_h value, int) {
    return raw_data(hive, value);
}

hive_type text_search_registry::convert_data(hive_h* hive, hive_value_h value, QString) {
    hive_type type = hive_t_REG_NONE;
    size_t length = 0;
    hivex_value_type(hive, value, &type, &length);
    return type;
}
