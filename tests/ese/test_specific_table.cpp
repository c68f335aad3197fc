// SPDX-License-Identifier: MIT
// Opening, finding and walking tables of real files, the kept columns of the three readers, damaged files, and the
// slots of the virtual operations.
#include "common/text_decoding.h"
#include "ese/contact_triggers.h"
#include "ese/place_triggers.h"
#include "ese/timetriggers.h"
#include "samples/ese_damage.h"
#include "tests/ese/ese_files.h"
#include "tests/support/virtual_slot.h"

#include <QtTest>

namespace {

const QString key = QStringLiteral("key-1");

QStringList list(const char* names) {
    return QString::fromLatin1(names).split(QLatin1Char(' '));
}

// A table of text columns with one row, whose values are the columns' names in lower case.
test_table named_values(const std::string& name, const QStringList& columns) {
    test_table table{name, {}, {{}}};
    for (const QString& column : columns) {
        table.columns.push_back(test_column(column.toStdString(), ese_type::text));
        table.rows[0].push_back(column.toLower().toStdString());
    }
    return table;
}

test_table numbered_rows(const std::string& name, int count) {
    test_table table{name, {test_column("Id", ese_type::text), test_column("Kind", ese_type::signed_32)}, {}};
    for (int row = 0; row < count; ++row) {
        table.rows.push_back({std::string(60, 'x') + std::to_string(row), 2});
    }
    return table;
}

QStringList texts_of(const specific_table::struct_time_triggers_data& r) {
    return {
        r.lookup_key,      r.id,           r.date_time,          r.recurrence_unit,  r.rule_instance_id, r.rule_status,
        r.rule_error_code, r.unused_field, r.rule_error_message, r.last_trigger_time};
}
QStringList texts_of(const specific_table::struct_place_reminder_data& r) {
    return {r.lookup_key, r.id, r.latitude, r.longitude, r.radius, r.start_date, r.name};
}
QStringList texts_of(const specific_table::struct_contact_trigger_data& r) {
    return {r.lookup_key,     r.id,           r.rule_instance_id,  r.rule_status, r.rule_error_code, r.aggregate_id,
            r.contact_handle, r.contact_name, r.rule_error_message};
}
QStringList texts_of(const specific_table::struct_remainder_data& r) {
    return {r.lookup_key,       latin1_until_nul(r.id), r.status,          r.sync_status, r.creation_time,
            r.last_update_time, r.last_access_time,     r.completion_time, r.title,       r.text};
}
QStringList texts_of(const specific_table::struct_data& r) {
    return {latin1_until_nul(r.id), latin1_until_nul(r.reminder_id), r.kind, r.creation_time};
}

// Keeps nothing of the values but their sizes, and stops at fewer: libesedb takes seconds for what is allowed
// otherwise.
class counting_reader : public specific_table {
public:
    static constexpr qint64 always_allowed = qint64{4} << 20;
    counting_reader() { always_allowed_long_bytes = always_allowed; }
    using specific_table::get_record_values;
    void get_record_values(libesedb_record_t* record, libesedb_error_t* error, QString, int value_index,
                           unsigned int column_type) override {
        bytes += record_type_case(record, value_index, column_type, error).size();
    }
    qint64 bytes = 0;
};

// Names the overload by its signature.
template <class Signature>
int overload_slot(Signature specific_table::*member) {
    return slot_of(member);
}

} // namespace

class test_specific_table : public QObject {
    Q_OBJECT

    QTemporaryDir folder;
    QString path_of(const char* name) const { return folder.filePath(QString::fromLatin1(name)); }

private Q_SLOTS:
    void unopenable_file() {
        const QString text = path_of("text.dat");
        QFile file(text);
        QVERIFY(file.open(QIODevice::WriteOnly) && file.write(QByteArray(20000, 'x')) == 20000);
        timetriggers reader;
        for (const QString& path : {text, path_of("missing.dat"), folder.path(), QString()}) {
            QCOMPARE(reader.start_parsing(path, QStringLiteral("Triggers")), -1);
            QCOMPARE(reader.start_parsing(path, QStringLiteral("Triggers"), key, 1), -1);
            QCOMPARE(reader.start_parsing(path, QStringLiteral("Triggers"), key, QStringList()), -1);
        }
        QVERIFY(reader.list_struct_data.isEmpty() && reader.list_remainder_data.isEmpty());
    }

    void chains_and_lists() {
        const QString path = path_of("größe.dat");
        write_ese(path, {numbered_rows("Triggers", 3), numbered_rows("Empty", 0)});
        const QString triggers = QStringLiteral("Triggers");
        specific_table bare;
        for (const QString& table : list("Empty triggers  Triggers")) { // the third has no name
            QVERIFY(bare.list_struct_data.isEmpty() && bare.list_remainder_data.isEmpty());
            QCOMPARE(bare.start_parsing(path, table), 0);
            QCOMPARE(bare.start_parsing(path, table, key, 1), 0);
            QCOMPARE(bare.start_parsing(path, table, key, QStringList()), 0);
        }
        QCOMPARE(bare.list_struct_data.size(), 3);
        QCOMPARE(texts_of(bare.list_struct_data.at(2)).join(QString()), QString());
        QCOMPARE(bare.list_remainder_data.size(), 6);
        QCOMPARE(texts_of(bare.list_remainder_data.at(5)).join(QString()), QString());

        timetriggers reader;
        for (const int flag : {0, 1, 7}) { // the flag and the list change nothing, and lists only grow
            reader.start_parsing(path, triggers, key, flag);
            reader.start_parsing(path, triggers, key, QStringList(QString::number(flag)));
        }
        QCOMPARE(reader.list_time_triggers_data.size(), 9);
        QCOMPARE(reader.list_remainder_data.size(), 9);
        QCOMPARE(texts_of(reader.list_time_triggers_data.at(1)), texts_of(reader.list_time_triggers_data.at(7)));
        QCOMPARE(texts_of(reader.list_remainder_data.at(1)), texts_of(reader.list_remainder_data.at(7)));
        QVERIFY(!reader.current_time_triggers_data && !reader.current_remainder_data);
    }

    void readers_keep_their_columns() {
        const QString path = path_of("core.dat");
        // Column names are compared exactly: those in other spellings, at an end each, are not kept.
        const QStringList triggers = list("Id ReminderId Kind CreationTime");
        const QStringList reminders =
            list("Id Status SyncStatus CreationTime LastUpdateTime LastAccessTime CompletionTime "
                 "Title Text");
        const QStringList times = list("Id DateTime RecurrenceUnit RuleInstanceId RuleStatus RuleErrorCode "
                                       "RuleErrorMessage LastTriggerTime");
        const QStringList places = list("Id Latitude Longitude Radius StartDate Name");
        const QStringList contacts = list("Id RuleInstanceId RuleStatus RuleErrorCode AggregateId ContactHandle "
                                          "ContactName RuleErrorMessage");
        write_ese(path,
                  {named_values("Triggers", triggers + list("id Unknown")),
                   named_values("Reminders", list("ID") + reminders), named_values("TimeTriggers", times + list("ID")),
                   named_values("LocationTriggers", places + list("name")),
                   named_values("ContactTriggers", list("contactName") + contacts)});
        const auto kept = [](const QStringList& names) {
            return list(qPrintable(names.join(QLatin1Char(' ')).toLower()));
        };
        timetriggers time;
        place_triggers place;
        contact_triggers contact;
        for (specific_table* reader : std::initializer_list<specific_table*>{&time, &place, &contact}) {
            reader->start_parsing(path, QStringLiteral("Triggers"));
            QCOMPARE(texts_of(reader->list_struct_data.at(0)), kept(triggers));
            reader->start_parsing(path, QStringLiteral("Reminders"), key, QStringList());
            QCOMPARE(texts_of(reader->list_remainder_data.at(0)), QStringList(key) + kept(reminders));
        }
        time.start_parsing(path, QStringLiteral("TimeTriggers"), key, 1);
        QStringList expected = QStringList(key) + kept(times);
        expected.insert(7, QString()); // the field that no column fills
        QCOMPARE(texts_of(time.list_time_triggers_data.at(0)), expected);
        place.start_parsing(path, QStringLiteral("LocationTriggers"), key, 1);
        QCOMPARE(texts_of(place.list_place_reminder_data.at(0)), QStringList(key) + kept(places));
        contact.start_parsing(path, QStringLiteral("ContactTriggers"), key, 1);
        QCOMPARE(texts_of(contact.list_contact_trigger_data.at(0)), QStringList(key) + kept(contacts));
    }

    void sparse_records_are_empty_not_null() {
        const QString path = path_of("sparse.dat");
        write_ese(path,
                  {{"T", {test_column("Other", ese_type::signed_32), test_column("Title", ese_type::text)}, {{1}}},
                   {"Bare", {}, {{}, {}}}});
        timetriggers reader;
        for (const QString& table : list("T Bare")) {
            reader.start_parsing(path, table);
            reader.start_parsing(path, table, key, QStringList());
            reader.start_parsing(path, table, key, 1);
        }
        QCOMPARE(reader.list_struct_data.size(), 3);
        QCOMPARE(reader.list_remainder_data.size(), 3);
        for (int row = 0; row < 3; ++row) {
            QStringList texts = texts_of(reader.list_remainder_data.at(row));
            QCOMPARE(texts.takeFirst(), row == 0 ? key : QString()); // only a value's visit stores the key
            texts += texts_of(reader.list_time_triggers_data.at(row)).mid(1);
            for (const QString& text : qAsConst(texts)) {
                QVERIFY(text.isEmpty() && !text.isNull());
            }
        }
    }

    void long_names() {
        const QString path = path_of("names.dat");
        const std::string name(1500, 'n');
        const std::vector<ese_column> columns = {test_column(name + "1", ese_type::text),
                                                 test_column(name + "2", ese_type::text)};
        write_ese(path, {{name, columns, {{"a", "b"}}}}, 32768);
        every_value_reader reader;
        reader.start_parsing(path, QString::fromStdString(name));
        QCOMPARE(reader.records.size(), 1);
        QCOMPARE(reader.records.at(0).value(QString::fromStdString(name + "1")), QByteArray("a"));
        QCOMPARE(reader.records.at(0).value(QString::fromStdString(name + "2")), QByteArray("b"));
        reader.start_parsing(path, QString::fromStdString(name.substr(1)));
        QCOMPARE(reader.records.size(), 1);
    }

    void damaged_table_data() {
        QTest::addColumn<QString>("damage");
        for (const char* damage : {"zeroed leaf", "truncated in the table", "tag out of the page", "bits flipped"}) {
            QTest::newRow(damage) << QString::fromLatin1(damage);
        }
    }

    // The rows that are read are rows that were written, and the other table of the file is whole.
    void damaged_table() {
        QFETCH(QString, damage);
        constexpr int count = 2000;
        const QString path = path_of("damaged.dat");
        write_ese(path, {numbered_rows("Other", 5), numbered_rows("Triggers", count)});
        const std::filesystem::path file = QFile::encodeName(path).constData();
        std::uint32_t leaf = 0;
        for (const ese_page& page : ese_pages_of(file, ese_table_object(file, "Triggers"))) {
            leaf = page.is_leaf ? page.number : leaf;
        }
        QVERIFY(leaf > 0);
        // Damage that goes elsewhere is none of the table.
        QVERIFY_EXCEPTION_THROWN(ese_table_object(file, "triggers"), ese_error);
        QVERIFY_EXCEPTION_THROWN(ese_zero_page(file, 100000), ese_error);
        QVERIFY_EXCEPTION_THROWN(ese_truncate(file, std::uint64_t{100000} * 4096), ese_error);
        const std::uint64_t begin = (std::uint64_t{leaf} + 1) * 4096;
        if (damage == QLatin1String("zeroed leaf")) {
            ese_zero_page(file, leaf);
        } else if (damage == QLatin1String("truncated in the table")) {
            ese_truncate(file, begin);
        } else if (damage == QLatin1String("tag out of the page")) {
            ese_set_byte(file, begin + 4096 - 6, 0xFF);
            ese_set_byte(file, begin + 4096 - 5, 0xFF);
        } else {
            for (std::uint64_t bit = 0; bit < 40; ++bit) { // the first record's header and ids
                ese_flip_bit(file, begin + 40 + bit, bit % 8);
            }
        }
        timetriggers reader;
        QCOMPARE(reader.start_parsing(path, QStringLiteral("Triggers")), 0);
        QVERIFY(reader.list_struct_data.size() < count || damage == QLatin1String("bits flipped"));
        QSet<QByteArray> written;
        for (int row = 0; row < count; ++row) {
            written.insert(QByteArray(60, 'x') + QByteArray::number(row));
        }
        int unknown = 0;
        for (const auto& record : qAsConst(reader.list_struct_data)) {
            unknown += written.contains(record.id) ? 0 : 1;
        }
        QVERIFY(unknown <= 1); // the flipped record itself
        reader.list_struct_data.clear();
        QCOMPARE(reader.start_parsing(path, QStringLiteral("Other")), 0);
        QCOMPARE(reader.list_struct_data.size(), 5);
    }

    // 90 records that all refer to one long value of 512 KB: a small file that asks for 45 MB.
    void shared_long_values_end() {
        constexpr int records = 90;
        constexpr qint64 shared_size = qint64{512} << 10;
        test_table table{"Triggers", {test_column("Text", ese_type::large_text)}, {}};
        for (int record = 0; record < records; ++record) {
            const std::string text(record == 0 ? shared_size : 1, 'x');
            table.rows.push_back({ese_value(text).put(ese_value::place::long_value)});
        }
        const QString path = path_of("shared.dat");
        write_ese(path, {table}, 32768);
        QFile file(path);
        QVERIFY(file.open(QIODevice::ReadWrite));
        QByteArray content = file.readAll();
        // The column's id, the value's offset, its flags; the reference follows.
        const QByteArray in_front = QByteArray("\x00\x01\x04\x00\x05", 5);
        int patched = 0;
        for (int at = content.indexOf(in_front); at >= 0; at = content.indexOf(in_front, at + 1)) {
            content.replace(at + in_front.size(), 4, QByteArray("\x01\x00\x00\x00", 4));
            ++patched;
        }
        QCOMPARE(patched, records);
        QVERIFY(file.seek(0) && file.write(content) == content.size());
        file.close();

        counting_reader reader;
        reader.start_parsing(path, QStringLiteral("Triggers"));
        const qint64 allowed = counting_reader::always_allowed + 16 * content.size();
        QVERIFY(allowed < records * shared_size);
        QCOMPARE(reader.list_struct_data.size(), records); // no record is lost, only texts are
        QCOMPARE(reader.bytes,
                 allowed / (shared_size + 1) * shared_size); // each is handed out with the byte that ends it
    }

    // Subclasses outside this project override by slot.
    void slot_order() {
        using table = specific_table;
        using handle = intptr_t*;
        const int slots[] = {
            // in the order wanted; the destructors are 0 and 1
            overload_slot<int(QString, QString)>(&table::start_parsing),
            overload_slot<int(QString, QString, QString, int)>(&table::start_parsing),
            overload_slot<int(QString, QString, QString, QStringList)>(&table::start_parsing),
            overload_slot<void(handle, handle, QString)>(&table::get_desired_table),
            overload_slot<int(handle, handle)>(&table::get_records),
            overload_slot<void(handle, handle, QString, int, unsigned)>(&table::get_record_values),
            overload_slot<void(handle, handle)>(&table::get_column_name_and_type),
            overload_slot<QString(handle, int, handle)>(&table::get_column_name),
            overload_slot<QByteArray(handle, int, unsigned, handle)>(&table::record_type_case),
            overload_slot<void(handle, handle, QString, QString, QStringList)>(&table::get_desired_table),
            overload_slot<int(handle, handle, QString, QStringList)>(&table::get_records),
            overload_slot<void(handle, handle, QString, QStringList)>(&table::get_column_name_and_type),
            overload_slot<void(handle, handle, QString, int, unsigned, QString, QStringList)>(
                &table::get_record_values),
            overload_slot<void(handle, handle, QString, QString)>(&table::get_desired_table),
            overload_slot<int(handle, handle, QString)>(&table::get_records),
            overload_slot<void(handle, handle, QString)>(&table::get_column_name_and_type),
            overload_slot<void(handle, handle, QString, int, unsigned, QString)>(&table::get_record_values),
        };
        int wanted = 2;
        for (const int slot : slots) {
            QCOMPARE(slot, wanted++);
        }
    }
};

QTEST_APPLESS_MAIN(test_specific_table)
#include "test_specific_table.moc"
