// SPDX-License-Identifier: MIT
// Writes registry hives: an empty hive made byte by byte, filled through hivex's own write calls. What hivex refuses to
// write (names that differ only in case, a megabyte of data) and damage are made by changing the finished bytes.
#pragma once

#include "registry/hive_handles.h"

#include <QByteArray>
#include <QString>
#include <QStringList>
#include <QTemporaryDir>
#include <QVector>

struct hive_value {
    QString name; // "" is the key's default value
    hive_type type;
    QByteArray data; // as stored; texts are UTF-16LE, see utf16_text
};

// text as UTF-16LE with its terminating zero, as registry texts are stored.
QByteArray utf16_text(const QString& text);

// A hive of 8 KiB: header, one page, a root key and its security record.
QByteArray empty_hive();

// A hive in the making. A failure of hivex ends the program with a message: the caller asked for something unwritable.
class hive_writer {
public:
    using key = hive_node_h; // also the offset of the key's cell in the finished bytes

    hive_writer();

    key root() const;
    // A new key. hivex takes two names that differ only in case for the same and refuses the second one. The time
    // taken grows with the square of the number of keys below parent.
    key add_key(key parent, const QString& name);
    // The key at a path of names with "\" between, from the root; what is missing on the way is made.
    key add_path(const QString& path);
    // Many new keys below a parent that has none, in linear time and in the order given; never more for that parent.
    QVector<key> add_keys(key parent, const QStringList& names);
    // Sets all values of a key, once a key.
    void set_values(key target, const QVector<hive_value>& values);
    // Last-written time as FILETIME. Keys have their parent's unless set.
    void set_time(key target, qint64 filetime);

    // The finished hive. The writer can be used on.
    QByteArray bytes();
    // Writes the finished hive to a file. False: the file cannot be written.
    bool save(const QString& path);

private:
    struct key_time {
        key target;
        qint64 filetime;
    };
    struct value_data {
        hive_value_h value;
        QByteArray data;
    };
    QTemporaryDir folder;
    hive_handle hive;
    QVector<key> grouped_keys;      // filled by add_keys
    QVector<value_data> large_data; // too large for hivex
    QVector<key_time> times;
};

// Ways to break a finished hive.
namespace hive_damage {
// Unequal sequence numbers: the hive was not written out completely. The header's checksum is right again.
void make_dirty(QByteArray& hive);
// A cell with an impossible size in the first page.
void spoil_block(QByteArray& hive);
// Replaces every occurrence; both texts have the same length.
void replace_bytes(QByteArray& hive, const QByteArray& from, const QByteArray& to);
// Lets a key have another key's list of subkeys, so that the keys no longer form a tree.
void share_subkeys(QByteArray& hive, hive_writer::key of, hive_writer::key with);
// Lets all values of a key have the data of its first one.
QByteArray with_shared_data(QByteArray hive, hive_writer::key of);
// Changes the length that a value of a key, by its place in hive order, claims for its data or its name.
void claim_data_length(QByteArray& hive, hive_writer::key of, quint32 number, quint32 length);
void claim_name_length(QByteArray& hive, hive_writer::key of, quint32 number, quint16 length);
} // namespace hive_damage
