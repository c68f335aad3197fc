// SPDX-License-Identifier: MIT
// Walks a registry hive below one key and gathers records. The base class fixes which keys are visited and in which
// order; what is kept of a value is decided by the hooks (find_node_value_length, convert_data), which do nothing here.
#pragma once

#include <hivex.h>

#include <QByteArray>
#include <QList>
#include <QMap>
#include <QString>

#include <limits>

class registry {
public:
    // One gathered value.
    struct my_data_inst_apps {
        QString value_name;
        QByteArray value_data; // as stored in the hive
        QString key_name;
    };

    // Grows from call to call; only the caller empties it.
    QList<my_data_inst_apps> record_list;

    registry() = default;
    registry(const registry&) = delete;
    registry& operator=(const registry&) = delete;

    // The order of the virtual operations is an interface: walkers of other plugins replace them by slot.
    virtual ~registry();

    // Opens hive_file, finds the key at key_path (names with "\" between, a leading one is allowed; "\" alone is the
    // root) and walks the keys below it, or with only_this_key makes one record from that key's own values. Returns -1
    // for an empty argument and for a file that is no readable hive (2 GiB and more count as none), else 0. A missing
    // key gives no records. A damaged value or key costs itself; a walk that a hive's lists lead in circles ends with
    // what it has. The file is never written to, and no handle on it outlives the call. The whole hive is held in
    // memory.
    virtual int start_registry_parse(QString hive_file, QString key_path, bool only_this_key);
    // hive, node, value: hivex's own and open, not owned; node 0 has no subkeys and no values.

    // The key at key_path below start; 0 when a part of the path is missing. Names are compared without regard to case.
    virtual hive_node_h get_user_node_handle(hive_h* hive, QString key_path, hive_node_h start);
    // Offers each value of the key to find_node_value_length, in the hive's order.
    virtual void values_of_the_node(hive_h* hive, hive_node_h node);
    // Walks what lies below a key, a record for each of its subkeys. False: it has none.
    virtual bool run_only_multiple(hive_h* hive, int node);
    // Walks each subkey of the start key; one without subkeys gives a record of its own values.
    virtual void run_only_multiple_paths(hive_h* hive, hive_node_h node);
    // The direct subkeys by name, optionally offering the values of each. Names are read as Latin-1.
    virtual QMap<QString, int> prepare_the_node_key_child(hive_h* hive, hive_node_h node, bool visit_values);
    // 4 and 8 bytes little-endian. bytes must hold as many; the length is not used.
    virtual quint32 htoi(unsigned char* bytes, int length);
    virtual quint64 htoll(unsigned char* bytes, int length);
    // The first 8 bytes as FILETIME (missing ones count as 0), in Unix seconds; times before 1970 wrap around.
    virtual quint64 epoc_time_conversion(QByteArray bytes);
    // The value's data without its zero bytes, as text in the local 8-bit encoding; "" without data.
    virtual QString convert_data(hive_h* hive, hive_value_h value);
    // Offers the values of all keys below node to find_node_value_length. children: the subkeys of node whose values
    // were offered already; empty: look them up and offer them.
    virtual void run_only_multiple_recurse(hive_h* hive, int node, QMap<QString, int> children);
    // Called once a value. value_name is read as Latin-1.
    virtual void find_node_value_length(hive_h* hive, hive_value_h value, QString value_name);
    // The value's raw data. Not to be called on the base class: stops a debug build, gives nothing otherwise.
    virtual QByteArray convert_data(hive_h* hive, hive_value_h value, int unused);
    // The value's type. The base class does not look: hive_t_REG_NONE.
    virtual hive_type convert_data(hive_h* hive, hive_value_h value, QString unused);

protected:
    // The value's data as stored; empty when it cannot be read.
    QByteArray raw_data(hive_h* hive, hive_value_h value);

    my_data_inst_apps* current_record = nullptr; // the record being filled, not owned; null outside a walk
    QString node_name;                           // the key last listed, read as UTF-8
    QString node_timestamp;                      // last-written time, Unix seconds in decimal

    void note_timestamp(hive_h* hive, hive_node_h node);

private:
    static constexpr qint64 unlimited = std::numeric_limits<qint64>::max();

    // Counts bytes that hivex handed out. False, for the rest of the walk, once they are more than the hive can hold.
    bool may_go_on(size_t bytes);
    bool is_exhausted() const { return readable_bytes < 0 || losable_bytes < 0; }

    // Of this walk; steps called outside a walk have no limit.
    qint64 hive_bytes = 0;
    qint64 readable_bytes = unlimited; // left
    qint64 losable_bytes = unlimited;  // left for data that hivex looked for and did not find whole
};
