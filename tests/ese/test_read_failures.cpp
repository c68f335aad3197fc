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
const QString triggers = QStringLiteral("Triggers");

bool fails_now(const char* call) {
    plan& of_call = plans[call];
    const int number = of_call.calls++;
    return of_call.fail_at == -2 || of_call.fail_at == number;
}

} // namespace

#define WRAP(call, parameters, arguments)                                                                              \
    int __real_##call parameters;                                                                                      \
    int __wrap_##call parameters;                                                                                      \
    int __wrap_##call parameters {                                                                                     \
        return fails_now(#call) ? -1 : __real_##call arguments;                                                        \
    }
// All handles of libesedb are one type. Calls that tell one thing of a handle or of its value of that number, and those
// that fill a buffer.
using at = intptr_t*;
using fault = libesedb_error_t**;
#define WRAP_ONE(call, out) WRAP(call, (at h, out o, fault e), (h, o, e))
#define WRAP_AT(call, out) WRAP(call, (at h, int i, out o, fault e), (h, i, o, e))
#define WRAP_FILL(call) WRAP(call, (at h, int i, uint8_t* data, size_t size, fault e), (h, i, data, size, e))
#define WRAP_FILL_LONG(call) WRAP(call, (at h, uint8_t * data, size_t size, fault e), (h, data, size, e))

extern "C" {
// clang-format off
WRAP_ONE(libesedb_table_get_number_of_records, int*)
WRAP_AT(libesedb_table_get_record, libesedb_record_t**)
WRAP_ONE(libesedb_record_get_number_of_values, int*)
WRAP_AT(libesedb_record_get_column_type, uint32_t*)
WRAP_AT(libesedb_record_get_utf8_column_name_size, size_t*)
WRAP_FILL(libesedb_record_get_utf8_column_name)
WRAP_AT(libesedb_record_get_value_boolean, uint8_t*)
WRAP_AT(libesedb_record_get_value_32bit, uint32_t*)
WRAP_AT(libesedb_record_get_value_filetime, uint64_t*)
WRAP_FILL(libesedb_record_get_value_data)
WRAP_AT(libesedb_record_get_value_utf8_string_size, size_t*)
WRAP_FILL(libesedb_record_get_value_utf8_string)
WRAP_FILL(libesedb_record_get_value_binary_data)
WRAP_AT(libesedb_record_get_long_value, libesedb_long_value_t**)
WRAP_ONE(libesedb_long_value_get_data_size, size64_t*)
WRAP_FILL_LONG(libesedb_long_value_get_data)
WRAP_FILL_LONG(libesedb_long_value_get_utf8_string)
// clang-format on
} // extern "C"

class test_read_failures : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() {
        path = folder.filePath(QStringLiteral("core.dat"));
        const std::vector<ese_column> columns = {test_column("Boolean", ese_type::boolean),
                                                 test_column("Kind", ese_type::signed_32),
                                                 test_column("Time", ese_type::date_time),
                                                 test_column("Float", ese_type::float_32),
                                                 test_column("Id", ese_type::text),
                                                 test_column("Binary", ese_type::binary),
                                                 test_column("LongText", ese_type::large_text),
                                                 test_column("LongBinary", ese_type::large_binary)};
        std::vector<ese_row> rows;
        for (const char* id : {"a", "b", "c"}) {
            rows.push_back({1, 7, 8, 0.5, id, ese_value::bytes("xyz"),
                            ese_value("long text").put(ese_value::place::long_value),
                            ese_value(ese_value::bytes("xyz")).put(ese_value::place::long_value)});
        }
        write_ese(path, {{"Triggers", columns, rows}});
    }

    void init() { plans.clear(); }
    void which_records_are_kept_data() {
        QTest::addColumn<QByteArray>("call");
        QTest::addColumn<int>("fail_at");
        QTest::addColumn<QByteArray>("ids");
        const auto add = [](const char* call, int fail_at, const char* ids) {
            QTest::addRow("%s %d", call, fail_at) << QByteArray(call) << fail_at << QByteArray(ids);
        };
        add("libesedb_table_get_number_of_records", 0, "");
        add("libesedb_table_get_record", 0, "");
        add("libesedb_table_get_record", 1, "a"); // and none of those behind
        add("libesedb_record_get_number_of_values", 1, "ac");
        add("libesedb_record_get_column_type", 8, "ac");  // first value of the second record
        add("libesedb_record_get_column_type", 15, "ac"); // and its last
    }

    void which_records_are_kept() {
        QFETCH(QByteArray, call);
        QFETCH(int, fail_at);
        plans[call.toStdString()].fail_at = fail_at;
        cortana_core_reader reader;
        QCOMPARE(reader.start_parsing(path, triggers), 0);
        QCOMPARE(reader.start_parsing(path, triggers, QStringLiteral("key"), QStringList()), 0);
        QByteArray kept;
        for (const auto& record : qAsConst(reader.list_struct_data)) {
            kept += record.id;
        }
        QTEST(kept, "ids");
        QCOMPARE(reader.list_remainder_data.size(), 3); // the failure was planned for the first read only
    }

    void failed_value_data() {
        QTest::addColumn<QByteArray>("column");
        QTest::addColumn<QByteArray>("before"); // the value as it reads without the failure
        QTest::addColumn<QByteArray>("text");
        const auto add = [](const char* call, const char* column, const char* before, const char* text) {
            QTest::newRow(call) << QByteArray(column) << QByteArray(before) << QByteArray(text);
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

    void failed_value() {
        QFETCH(QByteArray, column);
        every_value_reader reader;
        reader.start_parsing(path, triggers);
        plans[QTest::currentDataTag()].fail_at = -2;
        reader.start_parsing(path, triggers);
        QCOMPARE(reader.records.size(), 6);
        QTEST(reader.records.at(0).value(QString::fromLatin1(column)), "before");
        QTEST(reader.records.at(3).value(QString::fromLatin1(column)), "text");
    }

    void names_are_asked_until_known() {
        for (const char* call : {"libesedb_record_get_utf8_column_name_size", "libesedb_record_get_utf8_column_name"}) {
            init();
            plans[call].fail_at = 4; // "Id" of the first record
            cortana_core_reader reader;
            reader.start_parsing(path, triggers);
            QCOMPARE(reader.list_struct_data.size(), 3);
            QCOMPARE(reader.list_struct_data.at(0).id, QByteArray());
            QCOMPARE(reader.list_struct_data.at(0).kind, QStringLiteral("7"));
            QCOMPARE(reader.list_struct_data.at(1).id, QByteArray("b"));
            QCOMPARE(plans[call].calls, 8 + 1); // once a table, but for the failure
        }
    }

private:
    QString path;
    QTemporaryDir folder;
};

QTEST_APPLESS_MAIN(test_read_failures)
#include "test_read_failures.moc"
