// SPDX-License-Identifier: MIT
// What the two search walkers keep of a hive.
#include "registry/search_from_com.h"
#include "registry/text_search_registry.h"
#include "tests/registry/hive_fixture.h"

#include <QtTest>

namespace {

using values_by_path = QVector<QPair<QString, QStringList>>;

// Each record as key|value|data.
template <class Walker>
QStringList gathered(const QByteArray& bytes) {
    const hive_file file(bytes);
    Walker walker;
    if (walker.start_registry_parse(file.path(), QStringLiteral("start"), false) != 0) {
        return {QStringLiteral("not read")};
    }
    QStringList records;
    for (const registry::my_data_inst_apps& record : qAsConst(walker.record_list)) {
        records << record.key_name + QLatin1Char('|') + record.value_name + QLatin1Char('|') +
                       QString::fromLatin1(record.value_data.toHex());
    }
    return records;
}

} // namespace

Q_DECLARE_METATYPE(values_by_path)

class test_search_walkers : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void recents_data();
    void recents();
    void recents_data_is_raw_data();
    void recents_data_is_raw();
    void shared_data_is_not_copied_without_end();
    void com();
    void names_of_any_bytes();
};

void test_search_walkers::recents_data() {
    QTest::addColumn<values_by_path>("hive");
    QTest::addColumn<QStringList>("records");
    const QString key = QStringLiteral("start\\.&input=x");
    QTest::newRow("hive order, no order list")
        << values_by_path{{key,
                           {QStringLiteral("1"), QStringLiteral("MRUListEx"), QStringLiteral("0"),
                            QStringLiteral("MRUListExtra"), QStringLiteral("mrulistex"), QString()}}}
        << QStringList{QStringLiteral(".&input=x|1|00"), QStringLiteral(".&input=x|0|00"),
                       QStringLiteral(".&input=x|mrulistex|00"), QStringLiteral(".&input=x||00")};
    QTest::newRow("prefix only") << values_by_path{{QStringLiteral("start\\.&INPUT=x"), {QStringLiteral("0")}},
                                                   {QStringLiteral("start\\&input=x"), {QStringLiteral("0")}},
                                                   {QStringLiteral("start\\.&input"), {QStringLiteral("0")}},
                                                   {QStringLiteral("start"), {QStringLiteral("0")}}}
                                 << QStringList();
    QTest::newRow("own values of a key with subkeys are left out")
        << values_by_path{{key, {QStringLiteral("own")}},
                          {key + QStringLiteral("\\b"), {QStringLiteral("nested")}},
                          {key + QStringLiteral("\\b\\c"), {QStringLiteral("deeper")}},
                          {QStringLiteral("start\\.docx\\b"), {QStringLiteral("other")}}}
        << QStringList{QStringLiteral(".&input=x|nested|00"), QStringLiteral(".&input=x|deeper|00")};
    QTest::newRow("keys in code-unit order")
        << values_by_path{{QStringLiteral("start\\.&input=b"), {QStringLiteral("0")}},
                          {QStringLiteral("start\\.&input=a"), {QStringLiteral("0")}},
                          {QStringLiteral("start\\.&input=Z"), {QStringLiteral("0")}}}
        << QStringList{QStringLiteral(".&input=Z|0|00"), QStringLiteral(".&input=a|0|00"),
                       QStringLiteral(".&input=b|0|00")};
}

void test_search_walkers::recents() {
    QFETCH(values_by_path, hive);
    hive_writer writer;
    for (const auto& [path, names] : qAsConst(hive)) {
        QVector<hive_value> values;
        for (const QString& name : names) {
            values.append(value_of(name, QByteArray(1, '\0')));
        }
        writer.set_values(writer.add_path(path), values);
    }
    QTEST(gathered<text_search_registry>(writer.bytes()), "records");
}

void test_search_walkers::recents_data_is_raw_data() {
    QTest::addColumn<QByteArray>("data");
    QTest::newRow("none") << QByteArray();
    QTest::newRow("kept in the value's cell") << QByteArray("abc");
    QTest::newRow("odd length with zeros") << QByteArray("a\0b\0c", 5);
    QTest::newRow("1 MB") << QByteArray(1000000, '\x7f');
}

void test_search_walkers::recents_data_is_raw() {
    QFETCH(QByteArray, data);
    hive_writer writer;
    writer.set_values(writer.add_path(QStringLiteral("start\\.&input=x")), {value_of(QStringLiteral("0"), data)});
    QCOMPARE(gathered<text_search_registry>(writer.bytes()),
             QStringList{QStringLiteral(".&input=x|0|") + QString::fromLatin1(data.toHex())});
}

// 1,000 values that all point at the same megabyte.
void test_search_walkers::shared_data_is_not_copied_without_end() {
    hive_writer writer;
    QVector<hive_value> values{value_of(QStringLiteral("large"), QByteArray(1000000, 'x'))};
    for (int i = 0; i < 1000; ++i) {
        values.append(value_of(QStringLiteral("v%1").arg(i), "small data"));
    }
    const auto key = writer.add_path(QStringLiteral("start\\.&input=x"));
    writer.set_values(key, values);
    const hive_file file(hive_damage::with_shared_data(writer.bytes(), key));
    text_search_registry walker;
    QCOMPARE(walker.start_registry_parse(file.path(), QStringLiteral("start"), false), 0);
    qint64 bytes = 0;
    for (const registry::my_data_inst_apps& record : qAsConst(walker.record_list)) {
        bytes += record.value_data.size();
    }
    QVERIFY(bytes >= 1000000);
    QVERIFY(bytes <= 2 * QFileInfo(file.path()).size());
}

void test_search_walkers::com() {
    hive_writer writer;
    const QString names[] = {QStringLiteral(".company"), QStringLiteral(".com"),
                             QStringLiteral(".COM2"),    QStringLiteral("x.com"),
                             QStringLiteral(".co"),      QStringLiteral(".com/search?q=\u00e9&")};
    for (const QString& name : names) {
        writer.set_values(writer.add_path(QStringLiteral("start\\") + name + QStringLiteral("\\.com.below")),
                          {value_of(QStringLiteral("0"))});
    }
    QCOMPARE(gathered<search_from_com>(writer.bytes()),
             (QStringList{QStringLiteral(".com||"), QStringLiteral(".com/search?q=\u00c3\u00a9&||"),
                          QStringLiteral(".company||")}));
}

// Key names are one byte a character in the hive; each byte in turn stands at the end of a name.
void test_search_walkers::names_of_any_bytes() {
    hive_writer writer;
    writer.add_path(QStringLiteral("start\\.com@any"));
    const QByteArray sound = writer.bytes();
    for (int byte = 0; byte < 256; ++byte) {
        QByteArray hive = sound;
        hive_damage::replace_bytes(hive, ".com@any", QByteArray(".com") + static_cast<char>(byte) + "any");
        const QByteArray name = QString(QChar(byte)).toUtf8();
        const QString wanted = byte == 0 ? QString() : QString::fromLatin1(name) + QStringLiteral("any");
        QCOMPARE(gathered<search_from_com>(hive), QStringList{QStringLiteral(".com") + wanted + QStringLiteral("||")});
    }
}

QTEST_GUILESS_MAIN(test_search_walkers)
#include "test_search_walkers.moc"
