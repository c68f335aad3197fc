// SPDX-License-Identifier: MIT
// Written hives as hivex reads them.
#include "evidence/hive_writer.h"
#include "evidence/sample_source.h"
#include "tests/registry/hive_fixture.h"

#include <QtTest>

class test_hive_writer : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void bulk_keys_are_plain_subkeys();
    void times_and_values_are_kept();
    void sample_has_both_search_keys();
};

static hive_handle opened(const QString& path) {
    return hive_handle(hivex_open(QFile::encodeName(path).constData(), 0));
}

static QStringList names_of(hive_h* hive, const hive_node_h* nodes) {
    QStringList names;
    for (; nodes != nullptr && *nodes != 0; ++nodes) {
        names << QString::fromUtf8(hive_text(hivex_node_name(hive, *nodes)).get());
    }
    return names;
}

void test_hive_writer::bulk_keys_are_plain_subkeys() {
    QStringList names;
    for (int i = 0; i < 120; ++i) {
        names << QStringLiteral("key%1").arg(i, 3, 10, QLatin1Char('0'));
    }
    hive_writer writer;
    const auto parent = writer.add_path(QStringLiteral("Software\\Many"));
    const QVector<hive_writer::key> keys = writer.add_keys(parent, names);
    writer.set_values(keys.at(77), {value_of(QStringLiteral("v"))});
    const hive_file file(writer.bytes());
    const hive_handle hive = opened(file.path());
    QVERIFY(hive != nullptr);
    QCOMPARE(names_of(hive.get(), hive_nodes(hivex_node_children(hive.get(), parent)).get()), names);
    QCOMPARE(hivex_node_nr_children(hive.get(), parent), size_t(120));
    for (const auto key : keys) {
        QCOMPARE(hivex_node_parent(hive.get(), key), parent);
    }
    QCOMPARE(hivex_node_get_child(hive.get(), parent, "key077"), keys.at(77));
    QCOMPARE(hivex_node_nr_values(hive.get(), keys.at(77)), size_t(1));
}

void test_hive_writer::times_and_values_are_kept() {
    hive_writer writer;
    const auto key = writer.add_path(QStringLiteral("A\\B"));
    const QByteArray large(1 << 20, 'x');
    writer.set_values(key, {value_of(QStringLiteral("large"), large), value_of(QString(), QByteArray())});
    writer.set_time(key, 132336859456780000);
    const hive_file file(writer.bytes());
    const hive_handle hive = opened(file.path());
    QVERIFY(hive != nullptr);
    QCOMPARE(hivex_node_timestamp(hive.get(), key), int64_t(132336859456780000));
    const hive_values values(hivex_node_values(hive.get(), key));
    hive_type type = hive_t_REG_NONE;
    size_t length = 0;
    const hive_data data(hivex_value_value(hive.get(), values[0], &type, &length));
    QCOMPARE(QByteArray(data.get(), static_cast<int>(length)), large);
    QCOMPARE(hivex_value_type(hive.get(), values[1], &type, &length), 0);
    QCOMPARE(length, size_t(0));
}

void test_hive_writer::sample_has_both_search_keys() {
    QTemporaryDir folder;
    const sample_profile profile{folder.path() + QLatin1Char('/'), QStringLiteral("anna"), 0};
    QVERIFY(write_sample_hive(profile));
    const hive_handle hive = opened(profile.folder() + QStringLiteral("NTUSER.DAT"));
    QVERIFY(hive != nullptr);
    hive_node_h explorer = hivex_root(hive.get());
    for (const char* name : {"SOFTWARE", "Microsoft", "Windows", "CurrentVersion", "Explorer"}) {
        explorer = hivex_node_get_child(hive.get(), explorer, name);
    }
    const auto children_of = [&](const char* name) {
        const hive_node_h key = hivex_node_get_child(hive.get(), explorer, name);
        return names_of(hive.get(), hive_nodes(hivex_node_children(hive.get(), key)).get());
    };
    QCOMPARE(children_of("RecentDocs"),
             (QStringList{QStringLiteral(".&input=2&FORM=WNSGPH"), QStringLiteral(".docx")}));
    QCOMPARE(children_of("FileExts").filter(QStringLiteral(".com/search?q=")).size(), 3);
}

QTEST_GUILESS_MAIN(test_hive_writer)
#include "test_hive_writer.moc"
