// SPDX-License-Identifier: MIT
// Rows come back as they were packed, each by its own number.
#include "extractors/packed_rows.h"
#include "tests/support/test_text.h"

#include <QtTest>

#include <limits>

using packed_row = QVector<QVariant>;

class test_packed_rows : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void rows_come_back_data() {
        QTest::addColumn<packed_row>("values");
        QTest::newRow("no value") << packed_row();
        QTest::newRow("empty text") << packed_row{""_q, 1LL, ""_q};
        QTest::newRow("Latin-1 to its last character") << packed_row{"a"_q + QChar(0xE4) + QChar(0xFF)};
        QTest::newRow("first beyond Latin-1") << packed_row{"a"_q + QChar(0x100), "b"_q};
        QTest::newRow("zero characters") << packed_row{QString(QChar(0)) + "x"_q, QString(2, QChar(0))};
        QTest::newRow("half of a surrogate pair") << packed_row{QString(QChar(0xD800)), "after"_q};
        QTest::newRow("texts that look like marks") << packed_row{"n12"_q, "1"_q, "2"_q};
        QTest::newRow("longest numbers") << packed_row{std::numeric_limits<qint64>::min(), -1LL, 0LL,
                                                       std::numeric_limits<qint64>::max()};
        QTest::newRow("long text") << packed_row{QString(70000, QChar(0xFC)), QString(70000, QChar(0x3B1)), 5LL};
    }

    void rows_come_back() {
        QFETCH(packed_row, values);
        const packed_row neighbour{"neighbour"_q, 7LL};
        packed_rows rows;
        rows.append(neighbour);
        rows.append(values);
        rows.append(neighbour);
        QCOMPARE(rows.count(), 3);
        QCOMPARE(rows.at(1), values);
        QCOMPARE(rows.at(0), neighbour);
        QCOMPARE(rows.at(2), neighbour);
    }

    // As documented: both are empty texts and numbers afterwards.
    void other_values_settle() {
        packed_rows rows;
        rows.append({QString(), 3, true});
        QCOMPARE(rows.at(0), packed_row({""_q, 3LL, 1LL}));
        QVERIFY(!rows.at(0).at(0).toString().isNull());
    }
};

QTEST_APPLESS_MAIN(test_packed_rows)
#include "test_packed_rows.moc"
