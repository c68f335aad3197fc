// SPDX-License-Identifier: MIT
// What the two search walkers keep of a hive.
#include "registry/search_from_com.h"
#include "registry/text_search_registry.h"
#include "tests/registry/hive_fixture.h"

#include <QtTest>

namespace {

// Each record as key/value/data.
template <class Walker>
QStringList gathered(const QByteArray& bytes) {
    const hive_file file(bytes);
    Walker walker;
    if (walker.start_registry_parse(file.path(), q("start"), false) != 0) {
        return {q("not read")};
    }
    QStringList records;
    for (const registry::my_data_inst_apps& record : qAsConst(walker.record_list)) {
        records << QStringList{record.key_name, record.value_name, q(record.value_data.toHex().constData())}.join(
            QLatin1Char('/'));
    }
    return records;
}

} // namespace

class test_search_walkers : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void recents_data() {
        QTest::addColumn<QStringList>("hive"); // key:value:value...
        QTest::addColumn<QStringList>("records");
        const auto row = [](const char* name, const char* hive, const char* records) {
            QTest::newRow(name) << list_of(hive) << list_of(records);
        };
        row("hive order, no order list", "start\\.&input=x:1:MRUListEx:0:MRUListExtra:mrulistex:",
            ".&input=x/1/00|.&input=x/0/00|.&input=x/mrulistex/00|.&input=x//00");
        row("prefix only", "start\\.&INPUT=x:0|start\\&input=x:0|start\\.&input:0|start:0", "");
        row("own values of a key with subkeys are left out",
            "start\\.&input=x:own|start\\.&input=x\\b:nested|start\\.&input=x\\b\\c:deeper|start\\.docx\\b:other",
            ".&input=x/nested/00|.&input=x/deeper/00");
        row("keys in code-unit order", "start\\.&input=b:0|start\\.&input=a:0|start\\.&input=Z:0",
            ".&input=Z/0/00|.&input=a/0/00|.&input=b/0/00");
    }
    void recents() {
        QFETCH(QStringList, hive);
        hive_writer writer;
        for (const QString& key : qAsConst(hive)) {
            QStringList names = key.split(QLatin1Char(':'));
            const auto path = writer.add_path(names.takeFirst());
            QVector<hive_value> values;
            for (const QString& name : qAsConst(names)) {
                values.append(value_of(name, QByteArray(1, '\0')));
            }
            writer.set_values(path, values);
        }
        QTEST(gathered<text_search_registry>(writer.bytes()), "records");
    }

    void recents_data_is_raw() {
        const QByteArray large(1000000, '\x7f');
        hive_writer writer;
        writer.set_values(writer.add_path(q("start\\.&input=x")),
                          {value_of(q("none"), ""), value_of(q("kept in the value's cell"), "abc"),
                           value_of(q("odd length with zeros"), QByteArray("a\0b\0c", 5)), value_of(q("1 MB"), large)});
        QStringList wanted = list_of(".&input=x/none/|.&input=x/kept in the value's cell/616263|"
                                     ".&input=x/odd length with zeros/6100620063");
        wanted << q(".&input=x/1 MB/") + q(large.toHex().constData());
        QCOMPARE(gathered<text_search_registry>(writer.bytes()), wanted);
    }

    // 1,000 values that all point at the same megabyte.
    void shared_data_is_not_copied_without_end() {
        hive_writer writer;
        QVector<hive_value> values{value_of(q("large"), QByteArray(1000000, 'x'))};
        for (int i = 0; i < 1000; ++i) {
            values.append(value_of(QString::number(i), "small data"));
        }
        const auto key = writer.add_path(q("start\\.&input=x"));
        writer.set_values(key, values);
        const hive_file file(hive_damage::with_shared_data(writer.bytes(), key));
        text_search_registry walker;
        QCOMPARE(walker.start_registry_parse(file.path(), q("start"), false), 0);
        qint64 bytes = 0;
        for (const registry::my_data_inst_apps& record : qAsConst(walker.record_list)) {
            bytes += record.value_data.size();
        }
        QVERIFY(bytes >= 1000000);
        QVERIFY(bytes <= 2 * QFileInfo(file.path()).size());
    }

    void damaged_value_data() {
        QTest::addColumn<quint32>("length");
        QTest::newRow("more than the file") << 0x7fffffffU;
        QTest::newRow("more than the budget") << 100000U;
        QTest::newRow("nearly the file") << 8000U;
        QTest::newRow("too much for its cell") << 0x80000005U;
    }

    // It costs its own data; another key's value with a name that leads out of its cell costs the rest of that key.
    void damaged_value() {
        QFETCH(quint32, length);
        hive_writer writer;
        const auto key = writer.add_path(q("start\\.&input=a"));
        const auto other = writer.add_path(q("start\\.&input=b"));
        QVector<hive_value> values;
        for (const char* const name : {"0", "1", "2", "3", "4"}) {
            values.append(value_of(q(name), "at least five"));
        }
        writer.set_values(key, values);
        writer.set_values(other, values);
        writer.set_values(writer.add_path(q("start\\.&input=c")), {value_of(q("last"), "1")});
        QByteArray hive = writer.bytes();
        hive_damage::claim_data_length(hive, key, 1, length);
        hive_damage::claim_data_length(hive, key, 3, length);
        hive_damage::claim_name_length(hive, other, 1, 0xffff);
        const QString data = QLatin1Char('/') + q(QByteArray("at least five").toHex().constData());
        const QStringList wanted{q(".&input=a/0") + data, q(".&input=a/1/"),       q(".&input=a/2") + data,
                                 q(".&input=a/3/"),       q(".&input=a/4") + data, q(".&input=b/0") + data,
                                 q(".&input=c/last/31")};
        QCOMPARE(gathered<text_search_registry>(hive), wanted);
    }

    // hivex may copy megabytes of a value before it finds the rest missing: a hive made of such values is given up.
    void reads_in_vain_end() {
        constexpr quint32 count = 1200;
        hive_writer writer;
        const auto key = writer.add_path(q("start\\.&input=x"));
        writer.set_values(key, QVector<hive_value>(int(count), value_of(q("0"), "at least five")));
        QByteArray hive = writer.bytes();
        for (quint32 number = 0; number < count; ++number) {
            hive_damage::claim_data_length(hive, key, number, 0x7fffffff);
        }
        const int records = gathered<text_search_registry>(hive).size();
        QVERIFY2(records > 1000 && records < int(count), qPrintable(QString::number(records)));
    }

    void com() {
        hive_writer writer;
        for (const char* const name : {".company", ".com", ".COM2", "x.com", ".co", ".com/search?q=\u00e9&"}) {
            writer.set_values(writer.add_path(q("start\\") + q(name) + q("\\.com.below")), {value_of(q("0"))});
        }
        QCOMPARE(gathered<search_from_com>(writer.bytes()), list_of(".com//|.com/search?q=\u00c3\u00a9&//|.company//"));
    }

    // Key names are one byte a character in the hive; each byte in turn stands at the end of a name.
    void names_of_any_bytes() {
        hive_writer writer;
        writer.add_path(q("start\\.com@any"));
        const QByteArray sound = writer.bytes();
        for (int byte = 0; byte < 256; ++byte) {
            QByteArray hive = sound;
            hive_damage::replace_bytes(hive, ".com@any", QByteArray(".com") + static_cast<char>(byte) + "any");
            const QByteArray name = QString(QChar(byte)).toUtf8();
            const QString wanted = byte == 0 ? QString() : QString::fromLatin1(name) + q("any");
            QCOMPARE(gathered<search_from_com>(hive), QStringList{q(".com") + wanted + q("//")});
        }
    }
};

QTEST_GUILESS_MAIN(test_search_walkers)
#include "test_search_walkers.moc"
