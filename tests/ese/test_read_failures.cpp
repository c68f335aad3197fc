// SPDX-License-Identifier: MIT
// What becomes of a table when a call of libesedb fails in the middle. The calls concerned are wrapped at link time:
// each goes through to the real library, on a real file, unless a test planned its failure.
#include "ese/cortana_core_reader.h"
#include "tests/ese/ese_files.h"

#include <QtTest>

#include <map>
#include <string>

namespace {

struct plan {
    int fail_at = -1; // number of the call, from 0; -2: every call
    int calls = 0;
};
std::map<std::string, plan> plans;
int values_of_record = -1; // told instead of the real number when not below 0

bool fails_now(const char* call) {
    plan& of_call = plans[call];
    const int number = of_call.calls++;
    return of_call.fail_at == -2 || of_call.fail_at == number;
}

} // namespace

using record_handle = libesedb_record_t*;
using error_handle = libesedb_error_t**;

#define WRAP(call, parameters, arguments)                                                                              \
    int __real_##call parameters;                                                                                      \
    int __wrap_##call parameters;                                                                                      \
    int __wrap_##call parameters {                                                                                     \
        return fails_now(#call) ? -1 : __real_##call arguments;                                                        \
    }

extern "C" {
// clang-format off
WRAP(libesedb_table_get_number_of_records, (libesedb_table_t* table, int* count, error_handle error),
     (table, count, error))
WRAP(libesedb_table_get_record, (libesedb_table_t* table, int index, libesedb_record_t** record, error_handle error),
     (table, index, record, error))
WRAP(libesedb_record_get_column_type, (record_handle record, int index, uint32_t* type, error_handle error),
     (record, index, type, error))
WRAP(libesedb_record_get_utf8_column_name_size, (record_handle record, int index, size_t* size, error_handle error),
     (record, index, size, error))
WRAP(libesedb_record_get_utf8_column_name,
     (record_handle record, int index, uint8_t* name, size_t size, error_handle error),
     (record, index, name, size, error))
WRAP(libesedb_record_get_value_boolean, (record_handle record, int index, uint8_t* value, error_handle error),
     (record, index, value, error))
WRAP(libesedb_record_get_value_32bit, (record_handle record, int index, uint32_t* value, error_handle error),
     (record, index, value, error))
WRAP(libesedb_record_get_value_filetime, (record_handle record, int index, uint64_t* value, error_handle error),
     (record, index, value, error))
WRAP(libesedb_record_get_value_data,
     (record_handle record, int index, uint8_t* data, size_t size, error_handle error),
     (record, index, data, size, error))
WRAP(libesedb_record_get_value_utf8_string_size, (record_handle record, int index, size_t* size, error_handle error),
     (record, index, size, error))
WRAP(libesedb_record_get_value_utf8_string,
     (record_handle record, int index, uint8_t* text, size_t size, error_handle error),
     (record, index, text, size, error))
WRAP(libesedb_record_get_value_binary_data,
     (record_handle record, int index, uint8_t* data, size_t size, error_handle error),
     (record, index, data, size, error))
WRAP(libesedb_record_get_long_value,
     (record_handle record, int index, libesedb_long_value_t** value, error_handle error),
     (record, index, value, error))
WRAP(libesedb_long_value_get_data_size, (libesedb_long_value_t* value, size64_t* size, error_handle error),
     (value, size, error))
WRAP(libesedb_long_value_get_data,
     (libesedb_long_value_t* value, uint8_t* data, size_t size, error_handle error), (value, data, size, error))
WRAP(libesedb_long_value_get_utf8_string,
     (libesedb_long_value_t* value, uint8_t* text, size_t size, error_handle error), (value, text, size, error))
// clang-format on

int __real_libesedb_record_get_number_of_values(libesedb_record_t* record, int* count, libesedb_error_t** error);
int __wrap_libesedb_record_get_number_of_values(libesedb_record_t* record, int* count, libesedb_error_t** error);
int __wrap_libesedb_record_get_number_of_values(libesedb_record_t* record, int* count, libesedb_error_t** error) {
    if (fails_now("libesedb_record_get_number_of_values")) {
        return -1;
    }
    const int result = __real_libesedb_record_get_number_of_values(record, count, error);
    *count = values_of_record >= 0 ? values_of_record : *count;
    return result;
}
} // extern "C"

class test_read_failures : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void init();
    void which_records_are_kept_data();
    void which_records_are_kept();
    void failed_value_data();
    void failed_value();
    void record_without_values_is_kept_empty();
    void name_that_failed_is_asked_again();
    void names_are_asked_once_a_table();

private:
    QString path;
    QTemporaryDir folder;
};

void test_read_failures::initTestCase() {
    path = folder.filePath(QStringLiteral("core.dat"));
    const std::vector<ese_column> columns = {
        test_column("Boolean", ese_type::boolean),
        test_column("Kind", ese_type::signed_32),
        test_column("Time", ese_type::date_time),
        test_column("Float", ese_type::float_32),
        test_column("Id", ese_type::text),
        test_column("Binary", ese_type::binary),
        test_column("LongText", ese_type::large_text),
        test_column("LongBinary", ese_type::large_binary),
    };
    std::vector<ese_row> rows;
    for (const char* id : {"a", "b", "c"}) {
        rows.push_back({1, 7, 8, 0.5, id, ese_value::bytes("xyz"),
                        ese_value("long text").put(ese_value::place::long_value),
                        ese_value(ese_value::bytes("xyz")).put(ese_value::place::long_value)});
    }
    write_ese(path, {{"Triggers", columns, rows}});
}

void test_read_failures::init() {
    plans.clear();
    values_of_record = -1;
}

void test_read_failures::which_records_are_kept_data() {
    QTest::addColumn<QString>("call");
    QTest::addColumn<int>("fail_at");
    QTest::addColumn<QString>("ids");
    const auto add = [](const char* call, int fail_at, const char* ids) {
        QTest::addRow("%s %d", call, fail_at) << QString::fromLatin1(call) << fail_at << QString::fromLatin1(ids);
    };
    add("libesedb_table_get_number_of_records", 0, "");
    add("libesedb_table_get_record", 0, "");
    add("libesedb_table_get_record", 1, "a"); // and none of those behind
    add("libesedb_record_get_number_of_values", 1, "ac");
    add("libesedb_record_get_column_type", 8, "ac");  // first value of the second record
    add("libesedb_record_get_column_type", 15, "ac"); // and its last
}

void test_read_failures::which_records_are_kept() {
    QFETCH(QString, call);
    QFETCH(int, fail_at);
    QFETCH(QString, ids);
    plans[call.toStdString()].fail_at = fail_at;
    cortana_core_reader reader;
    QCOMPARE(reader.start_parsing(path, QStringLiteral("Triggers")), 0);
    QCOMPARE(reader.start_parsing(path, QStringLiteral("Triggers"), QStringLiteral("key"), QStringList()), 0);
    QByteArray kept;
    for (const auto& record : qAsConst(reader.list_struct_data)) {
        kept += record.id;
    }
    QCOMPARE(QString::fromLatin1(kept), ids);
    QCOMPARE(reader.list_remainder_data.size(), 3); // the failure was planned for the first read only
}

void test_read_failures::failed_value_data() {
    QTest::addColumn<QString>("call");
    QTest::addColumn<QString>("column");
    QTest::addColumn<QByteArray>("before"); // the value as it reads without the failure
    QTest::addColumn<QByteArray>("text");
    const auto add = [](const char* call, const char* column, const char* before, const char* text) {
        QTest::addRow("%s", call) << QString::fromLatin1(call) << QString::fromLatin1(column) << QByteArray(before)
                                  << QByteArray(text);
    };
    add("libesedb_record_get_value_boolean", "Boolean", "true", "false");
    add("libesedb_record_get_value_32bit", "Kind", "7", "0");
    add("libesedb_record_get_value_filetime", "Time", "8", "0");
    add("libesedb_record_get_value_data", "Float", "0.5", "0");
    add("libesedb_record_get_value_utf8_string_size", "Id", "a", "");
    add("libesedb_record_get_value_utf8_string", "Id", "a", "");
    add("libesedb_record_get_value_binary_data", "Binary", "78797a", "000000"); // of the size that was told
    add("libesedb_record_get_long_value", "LongText", "long text", "");
    add("libesedb_long_value_get_utf8_string", "LongText", "long text", "");
    add("libesedb_long_value_get_data_size", "LongBinary", "78797a", "");
    add("libesedb_long_value_get_data", "LongBinary", "78797a", "000000");
}

void test_read_failures::failed_value() {
    QFETCH(QString, call);
    QFETCH(QString, column);
    QFETCH(QByteArray, before);
    QFETCH(QByteArray, text);
    every_value_reader reader;
    reader.start_parsing(path, QStringLiteral("Triggers"));
    plans[call.toStdString()].fail_at = -2;
    reader.start_parsing(path, QStringLiteral("Triggers"));
    QCOMPARE(reader.records.size(), 6);
    QCOMPARE(reader.records.at(0).value(column), before);
    QCOMPARE(reader.records.at(3).value(column), text);
}

void test_read_failures::record_without_values_is_kept_empty() {
    values_of_record = 0;
    cortana_core_reader reader;
    reader.start_parsing(path, QStringLiteral("Triggers"));
    reader.start_parsing(path, QStringLiteral("Triggers"), QStringLiteral("key"), QStringList());
    QCOMPARE(reader.list_struct_data.size(), 3);
    QCOMPARE(reader.list_remainder_data.size(), 3);
    QCOMPARE(reader.list_remainder_data.at(0).lookup_key, QStringLiteral("")); // only a value's visit stores the key
}

void test_read_failures::name_that_failed_is_asked_again() {
    for (const char* call : {"libesedb_record_get_utf8_column_name_size", "libesedb_record_get_utf8_column_name"}) {
        init();
        plans[call].fail_at = 4; // "Id" of the first record
        cortana_core_reader reader;
        reader.start_parsing(path, QStringLiteral("Triggers"));
        QCOMPARE(reader.list_struct_data.size(), 3);
        QCOMPARE(reader.list_struct_data.at(0).id, QByteArray());
        QCOMPARE(reader.list_struct_data.at(0).kind, QStringLiteral("7"));
        QCOMPARE(reader.list_struct_data.at(1).id, QByteArray("b"));
    }
}

void test_read_failures::names_are_asked_once_a_table() {
    cortana_core_reader reader;
    reader.start_parsing(path, QStringLiteral("Triggers"));
    QCOMPARE(reader.list_struct_data.size(), 3);
    QCOMPARE(plans["libesedb_record_get_utf8_column_name"].calls, 8);
}

QTEST_APPLESS_MAIN(test_read_failures)
#include "test_read_failures.moc"
