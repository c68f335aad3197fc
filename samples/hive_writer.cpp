// SPDX-License-Identifier: MIT
// The empty hive's layout and the filling through hivex. All numbers of a hive are little-endian; offsets stored in
// cells count from the end of the header.
#include "samples/hive_writer.h"

#include <QFile>
#include <QStringList>
#include <QtEndian>

#include <vector>

namespace {

constexpr int header_size = 0x1000;
constexpr int hive_size = 0x2000;
constexpr int page_header_size = 0x20;
constexpr int root_cell_size = 0x60;
constexpr int security_cell_size = 0x30;
constexpr int root_cell = header_size + page_header_size;
constexpr int security_cell = root_cell + root_cell_size;
constexpr int free_cell = security_cell + security_cell_size;
constexpr quint32 nowhere = 0xffffffff;
constexpr qint64 made = 132010776000000000; // 2019-05-01 10:00:00 UTC
constexpr int keys_in_group = 50;
constexpr int largest_written_by_hivex = 900000; // bytes of a value's data

// Fields of the header, of a page's and of a value's cell.
constexpr int at_second_sequence = 0x08;
constexpr int at_size_of_pages = 0x28;
constexpr int at_checksum = 0x1fc;
constexpr int at_page_size = 0x08;
constexpr hive_node_h at_name_length = 0x06;
constexpr hive_node_h at_data_length = 0x08;
constexpr hive_node_h at_data = 0x0c;

// Fields of a key's cell, from the cell's start.
constexpr hive_node_h at_time = 0x08;
constexpr hive_node_h at_parent = 0x14;
constexpr hive_node_h at_subkey_count = 0x18;
constexpr hive_node_h at_subkey_list = 0x20;
constexpr hive_node_h at_value_count = 0x28;
constexpr hive_node_h at_value_list = 0x2c;

template <class Number>
void put(QByteArray& hive, hive_node_h offset, Number value) {
    if (offset + sizeof(value) > static_cast<size_t>(hive.size())) {
        qFatal("offset %zu is outside the hive", offset);
    }
    qToLittleEndian(value, hive.data() + offset);
}

template <class Number>
Number get(const QByteArray& hive, hive_node_h offset) {
    if (offset + sizeof(Number) > static_cast<size_t>(hive.size())) {
        qFatal("offset %zu is outside the hive", offset);
    }
    return qFromLittleEndian<Number>(hive.constData() + offset);
}

void put_text(QByteArray& hive, int offset, const char* text) {
    hive.replace(offset, static_cast<int>(qstrlen(text)), text);
}

quint32 stored(hive_node_h offset) {
    return static_cast<quint32>(offset - header_size);
}

void put_checksum(QByteArray& hive) {
    quint32 checksum = 0;
    for (hive_node_h offset = 0; offset < at_checksum; offset += sizeof(checksum)) {
        checksum ^= get<quint32>(hive, offset);
    }
    put(hive, at_checksum, checksum);
}

void put_header(QByteArray& hive) {
    put_text(hive, 0, "regf");
    put<quint32>(hive, 0x04, 1); // the two sequence numbers
    put<quint32>(hive, at_second_sequence, 1);
    put<qint64>(hive, 0x0c, made);
    put<quint32>(hive, 0x14, 1); // version 1.3
    put<quint32>(hive, 0x18, 3);
    put<quint32>(hive, 0x20, 1); // in memory form
    put<quint32>(hive, 0x24, stored(root_cell));
    put<quint32>(hive, at_size_of_pages, hive_size - header_size);
    put<quint32>(hive, 0x2c, 1);
    put_checksum(hive);
    put_text(hive, header_size, "hbin");
    put<quint32>(hive, header_size + at_page_size, hive_size - header_size);
    put<qint64>(hive, header_size + 0x14, made);
}

void put_root(QByteArray& hive) {
    const char* name = "CMI-CreateHive";
    put<qint32>(hive, root_cell, -root_cell_size); // negative: in use
    put_text(hive, root_cell + 0x04, "nk");
    put<quint16>(hive, root_cell + 0x06, 0x2c); // root key, not to be deleted, name in one byte a character
    put<qint64>(hive, root_cell + at_time, made);
    put<quint32>(hive, root_cell + at_parent, nowhere);
    put<quint32>(hive, root_cell + at_subkey_list, nowhere);
    put<quint32>(hive, root_cell + 0x24, nowhere); // subkeys in memory only
    put<quint32>(hive, root_cell + 0x2c, nowhere); // values
    put<quint32>(hive, root_cell + 0x30, stored(security_cell));
    put<quint32>(hive, root_cell + 0x34, nowhere); // class name
    put<quint16>(hive, root_cell + 0x4c, static_cast<quint16>(qstrlen(name)));
    put_text(hive, root_cell + 0x50, name);
}

// A security record with an empty descriptor; its only neighbour in the ring is itself.
void put_security(QByteArray& hive) {
    constexpr quint32 descriptor_size = 20;
    put<qint32>(hive, security_cell, -security_cell_size);
    put_text(hive, security_cell + 0x04, "sk");
    put<quint32>(hive, security_cell + 0x08, stored(security_cell));
    put<quint32>(hive, security_cell + 0x0c, stored(security_cell));
    put<quint32>(hive, security_cell + 0x10, 1);
    put<quint32>(hive, security_cell + 0x14, descriptor_size);
    put<quint16>(hive, security_cell + 0x18, 1);
    put<quint16>(hive, security_cell + 0x1a, 0x8000);
}

// hivex keeps one flat list a key and copies it with each new subkey. A key filled by add_keys has groups instead, and
// here its list of groups becomes an index of the groups' lists, as the system itself stores large keys.
void join_groups(QByteArray& hive, hive_writer::key parent) {
    constexpr hive_node_h at_list_count = 6;
    constexpr hive_node_h at_list_entries = 8;
    constexpr hive_node_h entry_size = 8; // offset and hash; an entry of the index has the offset only
    const hive_node_h index = get<quint32>(hive, parent + at_subkey_list) + header_size;
    const int groups = get<quint16>(hive, index + at_list_count);
    quint32 keys = 0;
    put_text(hive, static_cast<int>(index) + 4, "ri");
    for (hive_node_h group = 0; group < static_cast<hive_node_h>(groups); ++group) {
        const hive_node_h cell = get<quint32>(hive, index + at_list_entries + group * entry_size) + header_size;
        const quint32 list = get<quint32>(hive, cell + at_subkey_list);
        const hive_node_h entries = list + header_size + at_list_entries;
        const quint32 count = get<quint32>(hive, cell + at_subkey_count);
        for (hive_node_h entry = 0; entry < count; ++entry) {
            const hive_node_h child = get<quint32>(hive, entries + entry * entry_size) + header_size;
            put(hive, child + at_parent, stored(parent));
        }
        put(hive, index + at_list_entries + group * sizeof(list), list);
        keys += count;
    }
    put(hive, parent + at_subkey_count, keys);
}

// Large data gets a page of its own, in one cell.
void append_data(QByteArray& hive, hive_value_h value, const QByteArray& data) {
    constexpr int page_unit = 0x1000;
    const int page = hive.size();
    const int cell = page + page_header_size;
    const int end = (cell + 4 + data.size() + page_unit - 1) / page_unit * page_unit;
    hive.append(QByteArray(end - page, '\0'));
    put_text(hive, page, "hbin");
    put<quint32>(hive, static_cast<hive_node_h>(page) + 4, static_cast<quint32>(page - header_size));
    put<quint32>(hive, static_cast<hive_node_h>(page) + at_page_size, static_cast<quint32>(end - page));
    put<qint32>(hive, static_cast<hive_node_h>(cell), cell - end);
    hive.replace(cell + 4, data.size(), data);
    put<quint32>(hive, value + at_data_length, static_cast<quint32>(data.size()));
    put<quint32>(hive, value + at_data, static_cast<quint32>(cell - header_size));
    put<quint32>(hive, at_size_of_pages, static_cast<quint32>(end - header_size));
    put_checksum(hive);
}

// The cell of a key's value, by its place in hive order.
hive_node_h value_cell(const QByteArray& hive, hive_writer::key of, quint32 number) {
    const hive_node_h list = get<quint32>(hive, of + at_value_list) + header_size + sizeof(qint32);
    return get<quint32>(hive, list + number * sizeof(quint32)) + static_cast<hive_node_h>(header_size);
}

} // namespace

QByteArray utf16_text(const QString& text) {
    QByteArray bytes;
    for (const QChar unit : text + QChar(QChar::Null)) {
        bytes.append(static_cast<char>(unit.cell())).append(static_cast<char>(unit.row()));
    }
    return bytes;
}

QByteArray empty_hive() {
    QByteArray hive(hive_size, '\0');
    put_header(hive);
    put_root(hive);
    put_security(hive);
    put<qint32>(hive, free_cell, hive_size - free_cell);
    return hive;
}

hive_writer::hive_writer() {
    const QString path = folder.filePath(QStringLiteral("empty.hive"));
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly) || file.write(empty_hive()) != hive_size || !file.flush()) {
        qFatal("cannot write %s", qPrintable(path));
    }
    hive.reset(hivex_open(QFile::encodeName(path).constData(), HIVEX_OPEN_WRITE));
    if (hive == nullptr) {
        qFatal("hivex does not open the empty hive: %s", qPrintable(qt_error_string()));
    }
}

hive_writer::key hive_writer::root() const {
    return hivex_root(hive.get());
}

hive_writer::key hive_writer::add_key(key parent, const QString& name) {
    const key added = hivex_node_add_child(hive.get(), parent, name.toUtf8().constData());
    if (added == 0) {
        qFatal("hivex does not add the key %s: %s", qPrintable(name), qPrintable(qt_error_string()));
    }
    return added;
}

hive_writer::key hive_writer::add_path(const QString& path) {
    key at = root();
    for (const QString& name : path.split(QLatin1Char('\\'), Qt::SkipEmptyParts)) {
        const key known = hivex_node_get_child(hive.get(), at, name.toUtf8().constData());
        at = known != 0 ? known : add_key(at, name);
    }
    return at;
}

QVector<hive_writer::key> hive_writer::add_keys(key parent, const QStringList& names) {
    if (hivex_node_nr_children(hive.get(), parent) != 0) {
        qFatal("keys can be added in bulk to a key without subkeys only");
    }
    QVector<key> added;
    added.reserve(names.size());
    key group = 0;
    for (const QString& name : names) {
        if (added.size() % keys_in_group == 0) {
            group = add_key(parent, QStringLiteral("group %1").arg(added.size(), 8, 10, QLatin1Char('0')));
        }
        added.append(add_key(group, name));
    }
    if (!added.isEmpty()) {
        grouped_keys.append(parent);
    }
    return added;
}

void hive_writer::set_values(key target, const QVector<hive_value>& values) {
    std::vector<QByteArray> names;
    std::vector<QByteArray> contents;
    for (const hive_value& value : values) {
        names.push_back(value.name.toUtf8());
        contents.push_back(value.data.size() > largest_written_by_hivex ? QByteArray() : value.data);
    }
    std::vector<hive_set_value> given;
    for (size_t i = 0; i < names.size(); ++i) {
        given.push_back({names[i].data(), values[static_cast<int>(i)].type, static_cast<size_t>(contents[i].size()),
                         contents[i].data()});
    }
    if (hivex_node_set_values(hive.get(), target, given.size(), given.data(), 0) != 0) {
        qFatal("hivex does not set the values: %s", qPrintable(qt_error_string()));
    }
    const hive_values set(hivex_node_values(hive.get(), target));
    for (int i = 0; i < values.size(); ++i) {
        if (values.at(i).data.size() > largest_written_by_hivex) {
            large_data.append({set[static_cast<size_t>(i)], values.at(i).data});
        }
    }
}

void hive_writer::set_time(key target, qint64 filetime) {
    times.append({target, filetime});
}

QByteArray hive_writer::bytes() {
    const QString path = folder.filePath(QStringLiteral("filled.hive"));
    QFile file(path);
    if (hivex_commit(hive.get(), QFile::encodeName(path).constData(), 0) != 0 || !file.open(QIODevice::ReadOnly)) {
        qFatal("hivex does not write %s: %s", qPrintable(path), qPrintable(qt_error_string()));
    }
    QByteArray written = file.readAll();
    for (const key parent : qAsConst(grouped_keys)) {
        join_groups(written, parent);
    }
    for (const value_data& one : qAsConst(large_data)) {
        append_data(written, one.value, one.data);
    }
    for (const key_time& one : qAsConst(times)) {
        put(written, one.target + at_time, one.filetime);
    }
    return written;
}

bool hive_writer::save(const QString& path) {
    QFile file(path);
    const QByteArray written = bytes();
    return file.open(QIODevice::WriteOnly) && file.write(written) == written.size() && file.flush();
}

void hive_damage::make_dirty(QByteArray& hive) {
    put(hive, at_second_sequence, get<quint32>(hive, at_second_sequence) - 1);
    put_checksum(hive);
}

void hive_damage::spoil_block(QByteArray& hive) {
    put<qint32>(hive, security_cell, -3);
}

void hive_damage::replace_bytes(QByteArray& hive, const QByteArray& from, const QByteArray& to) {
    if (from.size() != to.size() || !hive.contains(from)) {
        qFatal("nothing to replace, or by another length");
    }
    hive.replace(from, to);
}

void hive_damage::share_subkeys(QByteArray& hive, hive_writer::key of, hive_writer::key with) {
    put(hive, with + at_subkey_count, get<quint32>(hive, of + at_subkey_count));
    put(hive, with + at_subkey_list, get<quint32>(hive, of + at_subkey_list));
}

QByteArray hive_damage::with_shared_data(QByteArray hive, hive_writer::key of) {
    const hive_node_h first = value_cell(hive, of, 0);
    for (quint32 number = 1; number < get<quint32>(hive, of + at_value_count); ++number) {
        put(hive, value_cell(hive, of, number) + at_data_length, get<quint32>(hive, first + at_data_length));
        put(hive, value_cell(hive, of, number) + at_data, get<quint32>(hive, first + at_data));
    }
    return hive;
}

void hive_damage::claim_data_length(QByteArray& hive, hive_writer::key of, quint32 number, quint32 length) {
    put(hive, value_cell(hive, of, number) + at_data_length, length);
}

void hive_damage::claim_name_length(QByteArray& hive, hive_writer::key of, quint32 number, quint16 length) {
    put(hive, value_cell(hive, of, number) + at_name_length, length);
}
