// SPDX-License-Identifier: MIT
// A written hive as hivex reads it.
#include "evidence/hive_writer.h"
#include "tests/registry/hive_fixture.h"

#include <QtTest>

class test_hive_writer : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void keys_values_and_times();
};

void test_hive_writer::keys_values_and_times() {
    QStringList names;
    for (int i = 0; i < 120; ++i) {
        names << QStringLiteral("key%1").arg(i, 3, 10, QLatin1Char('0'));
    }
    hive_writer writer;
    const auto parent = writer.add_path(QStringLiteral("Software\\Many"));
    const QVector<hive_writer::key> keys = writer.add_keys(parent, names);
    const QByteArray large(1 << 20, 'x');
    writer.set_values(keys.at(77), {value_of(QStringLiteral("large"), large), value_of(QString(), QByteArray())});
    writer.set_time(keys.at(77), 132336859456780000);
    const hive_file file(writer.bytes());
    const hive_handle opened(hivex_open(QFile::encodeName(file.path()).constData(), 0));
    hive_h* const hive = opened.get();
    QVERIFY(hive != nullptr);

    const hive_nodes children(hivex_node_children(hive, parent));
    QCOMPARE(hivex_node_nr_children(hive, parent), size_t(120));
    for (int i = 0; i < 120; ++i) {
        const auto child = children[static_cast<size_t>(i)];
        QCOMPARE(QString::fromUtf8(hive_text(hivex_node_name(hive, child)).get()), names.at(i));
        QCOMPARE(child, keys.at(i));
        QCOMPARE(hivex_node_parent(hive, child), parent);
    }
    const auto key = hivex_node_get_child(hive, parent, "key077");
    QCOMPARE(key, keys.at(77));
    QCOMPARE(hivex_node_timestamp(hive, key), int64_t(132336859456780000));
    QCOMPARE(hivex_node_nr_values(hive, key), size_t(2));
    const hive_values values(hivex_node_values(hive, key));
    hive_type type = hive_t_REG_NONE;
    size_t length = 0;
    const hive_data data(hivex_value_value(hive, values[0], &type, &length));
    QCOMPARE(QByteArray(data.get(), static_cast<int>(length)), large);
    QCOMPARE(hivex_value_type(hive, values[1], &type, &length), 0);
    QCOMPARE(length, size_t(0));
}

QTEST_GUILESS_MAIN(test_hive_writer)
#include "test_hive_writer.moc"
