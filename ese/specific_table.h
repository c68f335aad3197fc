// SPDX-License-Identifier: MIT
// The one reader of ESE database files: opens a file, finds a table by name, walks its records and asks a virtual hook
// to store the text of each value. Subclasses decide which columns they keep, and where.
#pragma once

#include <QByteArray>
#include <QList>
#include <QString>
#include <QStringList>
#include <QVector>

#include <libesedb.h>

#include <functional>
#include <limits>
#include <utility>

// Nothing is logged and nothing throws: a file that does not open gives -1, a missing table no records, an unreadable
// record ends its table, a record with an unreadable column type is dropped, an unreadable value gives empty text.
// The lists only ever grow, over all tables, keys and files that one reader reads, unless a sink takes the records. One
// thread at a time.
//
// There are three chains of calls, one for each start_parsing; they differ in what they carry down to the hook:
//   plain             nothing                 struct_data           into list_struct_data
//   keyed             a key                   struct_remainder_data into list_remainder_data, subclasses their own
//   keyed with list   a key and a text list   struct_remainder_data into list_remainder_data, subclasses their own
class specific_table {
public:
    // Record fields are empty, never null, until a column fills them. Texts are those of record_type_case, decoded as
    // UTF-8; QByteArray fields hold its bytes as they are.
    struct struct_data {
        QByteArray id;
        QByteArray reminder_id;
        QString kind = QStringLiteral("");
        QString creation_time = QStringLiteral(""); // FILETIME in decimal, as every time below but last_trigger_time
    };
    struct struct_remainder_data {
        QString lookup_key = QStringLiteral(""); // the chain's key
        QByteArray id;
        QString status = QStringLiteral("");
        QString sync_status = QStringLiteral("");
        QString creation_time = QStringLiteral("");
        QString last_update_time = QStringLiteral("");
        QString last_access_time = QStringLiteral("");
        QString completion_time = QStringLiteral("");
        QString title = QStringLiteral("");
        QString text = QStringLiteral("");
    };
    struct struct_time_triggers_data {
        QString lookup_key = QStringLiteral("");
        QString id = QStringLiteral("");
        QString date_time = QStringLiteral("");
        QString recurrence_unit = QStringLiteral("");
        QString rule_instance_id = QStringLiteral("");
        QString rule_status = QStringLiteral("");
        QString rule_error_code = QStringLiteral("");
        QString unused_field = QStringLiteral(""); // no column fills it
        QString rule_error_message = QStringLiteral("");
        QString last_trigger_time = QStringLiteral(""); // "yyyy-MM-ddThh:mm:ssZ"
    };
    struct struct_place_reminder_data {
        QString lookup_key = QStringLiteral("");
        QString id = QStringLiteral("");
        QString latitude = QStringLiteral("");
        QString longitude = QStringLiteral("");
        QString radius = QStringLiteral("");
        QString start_date = QStringLiteral("");
        QString name = QStringLiteral("");
    };
    struct struct_contact_trigger_data {
        QString lookup_key = QStringLiteral("");
        QString id = QStringLiteral("");
        QString rule_instance_id = QStringLiteral("");
        QString rule_status = QStringLiteral("");
        QString rule_error_code = QStringLiteral("");
        QString aggregate_id = QStringLiteral("");
        QString contact_handle = QStringLiteral("");
        QString contact_name = QStringLiteral("");
        QString rule_error_message = QStringLiteral("");
    };
    struct struct_container_data {
        QString container_id = QStringLiteral("");
        QString name = QStringLiteral("");
        QString directory = QStringLiteral("");
        QStringList secure_directories;
    };
    struct struct_ano_data {
        QString secure_directory = QStringLiteral("");
        QString file_size = QStringLiteral("");
        QString access_count = QStringLiteral("");
        QString sync_time = QStringLiteral("");
        QString creation_time = QStringLiteral("");
        QString expiry_time = QStringLiteral("");
        QString modified_time = QStringLiteral("");
        QString accessed_time = QStringLiteral("");
        QString url = QStringLiteral("");
        QString filename = QStringLiteral("");
        QString container_directory = QStringLiteral(""); // the chain's key
        QStringList container_secure_directories;         // the chain's list, once for each column of the row
    };

    // The lists are read directly, by position. Each current_... points at the record being filled while one database
    // record is walked, for the hook's use, and is null otherwise.
    QList<struct_data> list_struct_data;
    struct_data* current_struct_data = nullptr;
    QList<struct_remainder_data> list_remainder_data;
    struct_remainder_data* current_remainder_data = nullptr;
    QList<struct_time_triggers_data> list_time_triggers_data;
    struct_time_triggers_data* current_time_triggers_data = nullptr;
    QList<struct_place_reminder_data> list_place_reminder_data;
    struct_place_reminder_data* current_place_reminder_data = nullptr;
    QList<struct_contact_trigger_data> list_contact_trigger_data;
    struct_contact_trigger_data* current_contact_trigger_data = nullptr;
    QList<struct_container_data> list_container_data;
    struct_container_data* current_container_data = nullptr;
    QList<struct_ano_data> list_ano_data;
    struct_ano_data* current_ano_data = nullptr;

    specific_table() = default;
    specific_table(const specific_table&) = delete;
    specific_table& operator=(const specific_table&) = delete;

    // sink is called after each record of a table, whichever the chain and whether or not the record was appended; it
    // may take what the lists hold, so that they do not grow with the table. False ends the walk of that table. An
    // empty function, as at first: all records are kept.
    void set_record_sink(std::function<bool()> sink) { record_sink = std::move(sink); }

    // The virtual operations stand in the order of their slots, which subclasses rely on. All handles are libesedb's
    // and not owned; error may be null and is only handed on: libesedb is asked for no error texts, since nobody
    // shows them and they would grow with every failed call.
    virtual ~specific_table() = default;

    // 0 when the file was opened (with or without such a table), -1 otherwise. flag is ignored.
    virtual int start_parsing(QString file_path, QString table_name);
    virtual int start_parsing(QString file_path, QString table_name, QString key, int flag);
    virtual int start_parsing(QString file_path, QString table_name, QString key, QStringList columns);

    virtual void get_desired_table(libesedb_file_t* file, libesedb_error_t* error, QString table_name);
    // Walks the records; returns libesedb's last status.
    virtual int get_records(libesedb_table_t* table, libesedb_error_t* error);
    // The hook: stores one value in the current record. The base class stores nothing.
    virtual void get_record_values(libesedb_record_t* record, libesedb_error_t* error, QString column_name,
                                   int value_index, unsigned int column_type);
    // Walks the values of one record and appends it to the chain's list.
    virtual void get_column_name_and_type(libesedb_record_t* record, libesedb_error_t* error);
    // The name of the column of a value; "" when libesedb cannot tell.
    virtual QString get_column_name(libesedb_record_t* record, int value_index, libesedb_error_t* error);
    // One value as text, in UTF-8 (record_type_case.cpp). Numbers are decimal, binary values lower-case hexadecimal.
    virtual QByteArray record_type_case(libesedb_record_t* record, int value_index, unsigned int column_type,
                                        libesedb_error_t* error);

    virtual void get_desired_table(libesedb_file_t* file, libesedb_error_t* error, QString table_name, QString key,
                                   QStringList columns);
    virtual int get_records(libesedb_table_t* table, libesedb_error_t* error, QString key, QStringList columns);
    virtual void get_column_name_and_type(libesedb_record_t* record, libesedb_error_t* error, QString key,
                                          QStringList columns);
    virtual void get_record_values(libesedb_record_t* record, libesedb_error_t* error, QString column_name,
                                   int value_index, unsigned int column_type, QString key, QStringList columns);

    virtual void get_desired_table(libesedb_file_t* file, libesedb_error_t* error, QString table_name, QString key);
    virtual int get_records(libesedb_table_t* table, libesedb_error_t* error, QString key);
    virtual void get_column_name_and_type(libesedb_record_t* record, libesedb_error_t* error, QString key);
    virtual void get_record_values(libesedb_record_t* record, libesedb_error_t* error, QString column_name,
                                   int value_index, unsigned int column_type, QString key);

protected:
    // Bytes of long values that start_parsing hands out even from the smallest file.
    qint64 always_allowed_long_bytes = qint64{256} << 20;

    // Walks the values of one record into a new Record, to which *current points meanwhile, and appends it to list.
    // extra is what the chain carries down to the hook. A record whose values cannot be counted or whose column types
    // cannot be read is dropped. Overrides of get_column_name_and_type are one call of this (record_walk.h).
    template <class Record, class... Extra>
    void walk_values(libesedb_record_t* record, libesedb_error_t* error, QList<Record>& list, Record*& current,
                     const Extra&... extra);

private:
    template <class... Extra>
    int start_chain(const QString& file_path, const QString& table_name, const Extra&... extra);
    template <class... Extra>
    void find_table(libesedb_file_t* file, libesedb_error_t* error, const QString& table_name, const Extra&... extra);
    template <class... Extra>
    int walk_records(libesedb_table_t* table, libesedb_error_t* error, const Extra&... extra);
    const QString& name_of_value(libesedb_record_t* record, int value_index, libesedb_error_t* error);

    // Names by value index, for the table being walked: they are the same in all its records, and asking libesedb for
    // them costs more than the values. Null outside a walk.
    QVector<QString>* names_of_table = nullptr;
    QString name_outside_walk;

    std::function<bool()> record_sink;

    // Bytes of long values that the running start_parsing may still hand out. Any number of records may refer to one
    // long value, so a small file could ask for more memory than there is; a value past this counts as unreadable.
    static constexpr qint64 unlimited = std::numeric_limits<qint64>::max();
    qint64 long_bytes_left = unlimited;
    bool may_hand_out(quint64 bytes);
};
