// SPDX-License-Identifier: MIT
// The sink of a reader: asked after each record of every chain, it takes records and ends a table.
#include "tests/ese/ese_files.h"

#include <QtTest>

#include <utility>

class test_record_sink : public QObject {
    Q_OBJECT

    QTemporaryDir folder;

private Q_SLOTS:
    void sink_takes_records_data() {
        QTest::addColumn<int>("wanted");         // the sink says no with this record
        QTest::addColumn<bool>("takes");         // what the lists hold
        QTest::addColumn<QVector<int>>("calls"); // of the plain, the keyed and the chain with list
        QTest::newRow("all, taken") << 9 << true << QVector<int>{3, 3, 3};
        QTest::newRow("all, left") << 9 << false << QVector<int>{3, 3, 3};
        QTest::newRow("first only") << 1 << true << QVector<int>{1, 1, 1};
        QTest::newRow("two") << 2 << false << QVector<int>{2, 2, 2};
    }

    void sink_takes_records() {
        QFETCH(int, wanted);
        QFETCH(bool, takes);
        const QString path = folder.filePath(QStringLiteral("sink.dat"));
        const QString table = QStringLiteral("Triggers");
        write_ese(path, {{"Triggers", {test_column("Id", ese_type::text)}, {{"a"}, {"b"}, {"c"}}}});
        specific_table reader;
        int in_lists = 0;
        int called = 0;
        reader.set_record_sink([&] {
            in_lists = reader.list_struct_data.size() + reader.list_remainder_data.size();
            if (takes) {
                reader.list_struct_data.clear();
                reader.list_remainder_data.clear();
            }
            return ++called < wanted;
        });
        QVector<int> calls;
        const auto note = [&](int opened) {
            QCOMPARE(opened, 0);
            calls.append(std::exchange(called, 0));
        };
        note(reader.start_parsing(path, table));
        note(reader.start_parsing(path, table, table, 1));
        note(reader.start_parsing(path, table, table, QStringList()));
        QTEST(calls, "calls");
        QCOMPARE(in_lists, takes ? 1 : calls[0] + calls[1] + calls[2]);
        reader.set_record_sink({});
        reader.start_parsing(path, table);
        QCOMPARE(reader.list_struct_data.size(), takes ? 3 : calls[0] + 3);
    }
};

QTEST_APPLESS_MAIN(test_record_sink)
#include "test_record_sink.moc"
