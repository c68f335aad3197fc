// SPDX-License-Identifier: MIT
// The walk over a hive. A hive is evidence: its lists of subkeys may form loops, share their entries or lead 10,000
// keys down. So the descent keeps its own stack, and a walk reads no more bytes than a sound file of that size can
// hold. What a key or value merely claims to hold counts for nothing: only what hivex handed out does.
#include "registry/registry.h"

#include "common/filetime.h"
#include "registry/open_hive.h"

#include <QStringList>
#include <QtEndian>

#include <algorithm>
#include <limits>
#include <vector>

namespace {

// The least that a key, and a value, takes in a hive; a value keeps data of up to four bytes in its own cell.
constexpr size_t least_key_size = 80;
constexpr size_t least_value_size = 24;
constexpr size_t data_in_value_cell = 4;
// A name in UTF-8 is up to twice as long as it is stored.
constexpr qint64 utf8_growth = 2;
// hivex may copy much of a value before it finds that the rest is not there. Damage does not repeat that so often over
// the whole size of the file; a file made for it would take hours.
constexpr qint64 most_failed_reads = 1000;

// A handle that was narrowed to an int, back at its full width.
hive_node_h widened(int node) {
    return static_cast<hive_node_h>(node);
}

// name: as hivex handed it out, null when it could not: the length that stands in the key is then not to be trusted.
size_t size_of_key(hive_h* hive, hive_node_h node, const hive_text& name) {
    return name == nullptr ? least_key_size : qMax(least_key_size, hivex_node_struct_length(hive, node));
}

size_t size_of_value(hive_h* hive, hive_value_h value, const hive_text& name) {
    return name == nullptr ? least_value_size : qMax(least_value_size, hivex_value_struct_length(hive, value));
}

} // namespace

registry::~registry() = default;

int registry::start_registry_parse(QString hive_file, QString key_path, bool only_this_key) {
    if (hive_file.isEmpty() || key_path.isEmpty()) {
        return -1;
    }
    const opened_hive file = open_hive(hive_file.toLocal8Bit());
    hive_h* const hive = file.hive.get();
    if (hive == nullptr) {
        return -1;
    }
    const hive_node_h root = hivex_root(hive);
    if (root == 0) {
        return 0;
    }
    hive_bytes = file.size;
    readable_bytes = utf8_growth * hive_bytes;
    losable_bytes = most_failed_reads * hive_bytes;
    const hive_node_h node = get_user_node_handle(hive, key_path, root);
    if (!only_this_key) {
        run_only_multiple_paths(hive, node);
    } else if (node != 0) {
        my_data_inst_apps record;
        node_name = QString::fromUtf8(hive_text(hivex_node_name(hive, node)).get());
        current_record = &record;
        values_of_the_node(hive, node);
        record_list.append(record);
    }
    current_record = nullptr;
    readable_bytes = losable_bytes = unlimited;
    return 0;
}

hive_node_h registry::get_user_node_handle(hive_h* hive, QString key_path, hive_node_h start) {
    if (key_path == QLatin1String("\\")) {
        return start;
    }
    hive_node_h node = start;
    for (const QString& name : key_path.split(QLatin1Char('\\'), Qt::SkipEmptyParts)) {
        node = hivex_node_get_child(hive, node, name.toLocal8Bit().constData());
    }
    return node;
}

void registry::values_of_the_node(hive_h* hive, hive_node_h node) {
    if (is_exhausted()) {
        return;
    }
    const hive_values values(hivex_node_values(hive, node));
    for (const hive_value_h* value = values.get(); value != nullptr && *value != 0; ++value) {
        const hive_text name(hivex_value_key(hive, *value));
        if (!may_go_on(size_of_value(hive, *value, name)) || name == nullptr) {
            return;
        }
        find_node_value_length(hive, *value, QString::fromLatin1(name.get()));
    }
}

bool registry::run_only_multiple(hive_h* hive, int node) {
    const QMap<QString, int> children = prepare_the_node_key_child(hive, widened(node), false);
    note_timestamp(hive, widened(node));
    if (children.isEmpty()) {
        return false;
    }
    my_data_inst_apps record;
    for (const int child : children) {
        current_record = &record;
        note_timestamp(hive, widened(child));
        values_of_the_node(hive, widened(child));
        run_only_multiple_recurse(hive, child, {});
        record_list.append(record);
    }
    current_record = nullptr;
    return true;
}

void registry::run_only_multiple_paths(hive_h* hive, hive_node_h node) {
    const QMap<QString, int> children = prepare_the_node_key_child(hive, node, false);
    for (const int child : children) {
        // Deliberate: a key that has subkeys is asked for theirs only; its own values are never visited.
        if (run_only_multiple(hive, child)) {
            continue;
        }
        my_data_inst_apps record;
        current_record = &record;
        note_timestamp(hive, widened(child));
        values_of_the_node(hive, widened(child));
        record_list.append(record);
        current_record = nullptr;
    }
}

QMap<QString, int> registry::prepare_the_node_key_child(hive_h* hive, hive_node_h node, bool visit_values) {
    QMap<QString, int> children;
    if (is_exhausted()) {
        return children; // hivex would build the whole list first, for every key that is still to be visited
    }
    const hive_nodes nodes(hivex_node_children(hive, node));
    for (const hive_node_h* child = nodes.get(); child != nullptr && *child != 0; ++child) {
        const hive_text name(hivex_node_name(hive, *child));
        if (!may_go_on(size_of_key(hive, *child, name))) {
            break;
        }
        node_name = QString::fromUtf8(name.get());
        if (name == nullptr) {
            continue;
        }
        if (visit_values) {
            values_of_the_node(hive, *child);
        }
        // Deliberate: hivex gives UTF-8 and it is read as Latin-1. The order of the walk and the names in the records
        // follow from it, and the suite's other walkers read names the same way.
        children.insert(QString::fromLatin1(name.get()), static_cast<int>(*child));
    }
    return children;
}

void registry::run_only_multiple_recurse(hive_h* hive, int node, QMap<QString, int> children) {
    if (children.isEmpty()) {
        children = prepare_the_node_key_child(hive, widened(node), true);
    }
    struct level {
        QMap<QString, int> keys;
        QMap<QString, int>::const_iterator next;
    };
    std::vector<level> path;
    const auto descend = [&path](const QMap<QString, int>& keys) { path.push_back({keys, keys.constBegin()}); };
    descend(children);
    while (!path.empty()) {
        level& deepest = path.back();
        if (deepest.next == deepest.keys.constEnd()) {
            path.pop_back();
            continue;
        }
        const QMap<QString, int> below = prepare_the_node_key_child(hive, widened(*deepest.next++), true);
        if (!below.isEmpty()) {
            descend(below);
        }
    }
}

void registry::find_node_value_length(hive_h*, hive_value_h, QString) {}

void registry::note_timestamp(hive_h* hive, hive_node_h node) {
    node_timestamp =
        QString::number((hivex_node_timestamp(hive, node) - filetime::ticks_before_1970) / filetime::ticks_per_second);
}

bool registry::may_go_on(size_t bytes) {
    readable_bytes = static_cast<qint64>(bytes) <= readable_bytes ? readable_bytes - static_cast<qint64>(bytes) : -1;
    return !is_exhausted();
}

quint32 registry::htoi(unsigned char* bytes, int) {
    return qFromLittleEndian<quint32>(bytes);
}

quint64 registry::htoll(unsigned char* bytes, int) {
    return qFromLittleEndian<quint64>(bytes);
}

quint64 registry::epoc_time_conversion(QByteArray bytes) {
    unsigned char ticks[sizeof(quint64)] = {};
    std::copy_n(bytes.constData(), qMin(bytes.size(), static_cast<int>(sizeof(ticks))), ticks);
    // Deliberate: unsigned arithmetic; a time before 1970 wraps to a huge number that readers know.
    return (htoll(ticks, 1) - quint64{filetime::ticks_before_1970}) / quint64{filetime::ticks_per_second};
}

QByteArray registry::raw_data(hive_h* hive, hive_value_h value) {
    hive_type type = hive_t_REG_NONE;
    size_t length = 0;
    if (is_exhausted() || hivex_value_type(hive, value, &type, &length) != 0) {
        return QByteArray();
    }
    const auto claimed = static_cast<qint64>(length);
    const hive_data data(hivex_value_value(hive, value, &type, &length));
    if (data == nullptr) {
        losable_bytes -= qMin(claimed, hive_bytes);
        return QByteArray();
    }
    return may_go_on(length - qMin(length, data_in_value_cell)) ? QByteArray(data.get(), static_cast<int>(length))
                                                                : QByteArray();
}

QString registry::convert_data(hive_h* hive, hive_value_h value) {
    // Deliberate: UTF-16 text is not decoded but freed of its zero bytes; only ASCII comes out whole.
    const QByteArray text = raw_data(hive, value).replace('\0', QByteArray());
    return QString::fromLocal8Bit(text.constData(), text.size());
}

QByteArray registry::convert_data(hive_h*, hive_value_h, int) {
    Q_ASSERT_X(false, "registry::convert_data(hive_h*, hive_value_h, int)", "the base class keeps no raw data");
    return QByteArray();
}

hive_type registry::convert_data(hive_h*, hive_value_h, QString) {
    return hive_t_REG_NONE;
}
