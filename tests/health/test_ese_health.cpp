// SPDX-License-Identifier: MIT
// Whole databases: sound ones are sound whatever the page size and the chunks, and each kind of damage at each kind of
// page is told with the page's number and table.
#include "checked_file.h"

#include <QtTest>

#include <functional>

using change = std::function<void(test_database& file)>;
Q_DECLARE_METATYPE(change)

namespace {

constexpr int place = 200; // in the middle of a page's entries
constexpr int small = 4096;
constexpr int large = 32768;

QStringList texts(const file_health& health) {
    QStringList list;
    for (const damaged_page& page : health.ese->damaged) {
        list << text_of(page);
    }
    return list;
}

QString told(const file_health& health) {
    QString text = health.problem + health.problems.join(QLatin1Char('|')) + health.notes.join(QLatin1Char('|'));
    for (const table_health& table : health.ese ? health.ese->tables : QVector<table_health>()) {
        text += QStringLiteral(" %1: %2+%3, %4, %5")
                    .arg(table.name)
                    .arg(table.rows)
                    .arg(table.rows_outside)
                    .arg(table.long_value_entries)
                    .arg(table.damaged_pages);
    }
    return text;
}

file_health check(const test_database& file) {
    return checked(ese_database_checker(), file.bytes);
}

} // namespace

class test_ese_health : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void sound_files_data() {
        QTest::addColumn<int>("page_size");
        QTest::addColumn<int>("long_value_entries"); // a size and the segments, 40 times
        QTest::newRow("4 KiB") << 4096 << 40 * 4;
        QTest::newRow("8 KiB") << 8192 << 40 * 3;
        QTest::newRow("16 KiB") << 16384 << 40 * 2;
        QTest::newRow("32 KiB") << 32768 << 40 * 2;
    }
    void sound_files() {
        QFETCH(int, page_size);
        QFETCH(int, long_value_entries);
        const test_database file(static_cast<std::uint32_t>(page_size));
        const file_health health = check(file);
        const QString expected = QStringLiteral(" Other: 5+0, 0, 0 Container_3: 4000+0, %1, 0 Empty: 0+0, 0, 0");
        QCOMPARE(told(health), expected.arg(long_value_entries));
        QCOMPARE(health.size, qint64{file.bytes.size()});
        QCOMPARE(qint64{file.page_count()}, health.ese->pages);
        QCOMPARE(health.ese->unwritten_pages, qint64{22}); // of the reserved 24 the two catalogs are written
        QVERIFY(health.ese->are_tables_known && health.ese->damaged_pages == 0);
        QCOMPARE(health.ese->state, QStringLiteral("clean"));
        const table_health* const table = health.ese->table(QStringLiteral("Container_3"));
        QVERIFY(table != nullptr && table->root_page == file.root() && table->object == test_database::container);
        QVERIFY(health.ese->table(QStringLiteral("container_3")) == nullptr);
    }

    void damage_data() {
        QTest::addColumn<int>("page_size");
        QTest::addColumn<change>("damage");
        QTest::addColumn<QString>("reason");
        QTest::addColumn<QString>("owner");
        const auto add = [](const char* name, int size, const char* reason, const change& damage,
                            const char* owner = " (Container_3)") {
            QTest::addRow("%s, %d", name, size)
                << size << damage << QString::fromLatin1(reason) << QString::fromLatin1(owner);
        };
        // The damaged page is left in `file.damaged`.
        const char* const sum = "its checksum is wrong";
        for (const int size : {small, 8192, 16384, large}) {
            const auto flip = [&](const char* name, const char* owner,
                                  const std::function<quint32(const test_database&)>& choose) {
                add(
                    name, size, sum, [=](test_database& file) { file.flip(file.damaged = choose(file), place); },
                    owner);
            };
            flip("bit in a leaf", " (Container_3)", [](const test_database& file) { return file.leaves().at(7); });
            flip("bit in the root", " (Container_3)", [](const test_database& file) { return file.root(); });
            flip("bit in a long value", " (Container_3, long values)",
                 [](const test_database& file) { return file.leaves(test_database::long_values).at(3); });
            flip("bit in a lone page", " (Other)",
                 [](const test_database& file) { return file.root(test_database::other); });
            flip("bit in the catalog's copy", " (MSysObjectsShadow)",
                 [](const test_database&) { return page_view::catalog_copy_root; });
            add("leaf all zero", size, "it is in use, but all zero",
                [](test_database& file) { file.zero(file.damaged = file.leaves().at(7)); });
            add("root all zero", size, "it is in use, but all zero",
                [](test_database& file) { file.zero(file.damaged = file.root()); });
            add("another page's content", size, size < 16384 ? sum : "it holds the content of another page",
                [](test_database& file) {
                    const QByteArray other = file.bytes.mid(file.offset(file.leaves().at(9)), file.page_size);
                    file.damaged = file.leaves().at(7);
                    file.bytes.replace(file.offset(file.damaged), file.page_size, other);
                });
            add("garbage", size, sum, [](test_database& file) {
                file.damaged = file.leaves().at(7);
                file.bytes.replace(file.offset(file.damaged), file.page_size, QByteArray(file.page_size, '\xA7'));
            });
            add("tag outside", size, "its entries do not lie within it", [size](test_database& file) {
                file.damaged = file.leaves().at(7);
                put_le<std::uint16_t>(file.at(file.damaged, file.page_size - 6), size < 16384 ? 0x1fff : 0x7fff);
                file.mend(file.damaged);
            });
            add("child twice", size, "two places of the page trees lead to it", [](test_database& file) {
                const quint32 parent = file.pages(test_database::container, 4, 4).at(0);
                file.damaged = get_le<std::uint32_t>(file.entry(parent, 2));
                put_le(file.entry(parent, 3), file.damaged);
                file.mend(parent);
            });
            add("child is the root", size, "two places of the page trees lead to it", [](test_database& file) {
                const quint32 parent = file.pages(test_database::container, 4, 4).at(0);
                put_le(file.entry(parent, 2), file.damaged = file.root());
                file.mend(parent);
            });
            add("child of another table", size, "it is in use, but belongs to another tree", [](test_database& file) {
                const quint32 parent = file.pages(test_database::container, 4, 4).at(0);
                put_le(file.entry(parent, 2), file.damaged = file.root(test_database::other));
                file.mend(parent);
            });
            add("child behind the end", size, "it is in use, but the file ends before it", [](test_database& file) {
                const quint32 parent = file.pages(test_database::container, 4, 4).at(0);
                put_le(file.entry(parent, 2), file.damaged = 0xfffffff0);
                file.mend(parent);
            });
            add(
                "cut in the last page", size, "it is cut off",
                [](test_database& file) {
                    file.damaged = static_cast<quint32>(file.page_count());
                    file.bytes.chop(file.page_size / 3);
                },
                " (Empty)");
            add(
                "last page missing", size, "it is in use, but the file ends before it",
                [](test_database& file) {
                    file.damaged = static_cast<quint32>(file.page_count());
                    file.bytes.chop(file.page_size);
                },
                " (Empty)");
        }
        for (int quarter = 0; quarter < 4; ++quarter) {
            add(QByteArray("quarter " + QByteArray::number(quarter)).constData(), large, sum,
                [=](test_database& file) { file.flip(file.damaged = file.leaves().at(7), 100 + quarter * 8192); });
        }
        add("bit in a lower branch", small, sum, [](test_database& file) {
            file.flip(file.damaged = file.pages(test_database::container, 7, 4).at(0), place);
        });
    }
    void damage() {
        QFETCH(int, page_size);
        QFETCH(change, damage);
        QFETCH(QString, reason);
        QFETCH(QString, owner);
        test_database file(static_cast<std::uint32_t>(page_size));
        damage(file);
        const file_health health = check(file);
        const QString expected = QStringLiteral("damaged page %1%2: %3").arg(file.damaged).arg(owner, reason);
        QCOMPARE(texts(health), QStringList(expected));
        QCOMPARE(health.problems, QStringList(expected));
        QCOMPARE(health.problem, QString());
        QCOMPARE(health.ese->damaged_pages, qint64{1});
        for (const table_health& table : health.ese->tables) {
            QCOMPARE(table.damaged_pages, owner.startsWith(QStringLiteral(" (") + table.name) ? qint64{1} : 0);
        }
    }

    // What a reader must find, and what lies beside it.
    void rows_data() {
        QTest::addColumn<change>("what");
        QTest::addColumn<int>("missing"); // of the 4000 rows, in rows of the leaf chosen: -1 stands for all of them
        QTest::addColumn<int>("outside");
        const auto add = [](const char* name, int missing, int outside, const change& what) {
            QTest::newRow(name) << what << missing << outside;
        };
        add("deleted row", 1, 0, [](test_database& file) { file.delete_entry(file.damaged, 2); });
        add("leaf given up", -1, 0, [](test_database& file) {
            put_le(file.at(file.damaged, 36), file.flags(file.damaged) | 8);
            file.mend(file.damaged);
        });
        add("leaf that nothing leads to", -1, -1, [](test_database& file) {
            const quint32 parent = file.pages(test_database::container, 4, 4).at(0);
            for (int i = 0; i < page_view(file.page(parent)).entry_count(); ++i) {
                if (get_le<std::uint32_t>(file.entry(parent, i)) == file.damaged) {
                    file.delete_entry(parent, i);
                }
            }
        });
        add("leaf with a changed byte", 0, 0, [](test_database& file) { file.flip(file.damaged, place); });
        add("leaf all zero", -1, 0, [](test_database& file) { file.zero(file.damaged); });
        add("leaf below a damaged page", 0, 0, [](test_database& file) {
            file.flip(file.pages(test_database::container, 4, 4).at(0), 30); // its entries are as they were
        });
    }
    void rows() {
        QFETCH(change, what);
        QFETCH(int, missing);
        QFETCH(int, outside);
        for (const int size : {small, large}) {
            test_database file(static_cast<std::uint32_t>(size));
            file.damaged = file.leaves().at(7);
            const int all = get_le<std::uint16_t>(file.at(file.damaged, 34)) - 1;
            QVERIFY(all > 3);
            what(file);
            const file_health health = check(file);
            const table_health* const table = health.ese->table(QStringLiteral("Container_3"));
            QCOMPARE(table->rows, 4000 - qint64{missing < 0 ? all : missing});
            QCOMPARE(table->rows_outside, qint64{outside < 0 ? all : outside});
        }
    }

    // Tables whose catalog page is damaged are known from the copy; without either they are missing, and it is told.
    void damaged_catalog() {
        for (const int size : {small, large}) {
            test_database file(static_cast<std::uint32_t>(size));
            const QString sound = told(check(file));
            file.flip(page_view::catalog_root, place);
            const file_health health = check(file);
            QCOMPARE(health.problems,
                     QStringList({QStringLiteral("the catalog of the ESE database is damaged; tables may be missing"),
                                  QStringLiteral("damaged page 4 (MSysObjects): its checksum is wrong")}));
            QCOMPARE(health.notes, QStringList(QStringLiteral("3 tables of the ESE database are known from the copy of "
                                                              "its catalog only")));
            QVERIFY(told(health).endsWith(sound));
            file.zero(page_view::catalog_copy_root);
            QVERIFY(check(file).ese->tables.isEmpty() && check(file).problems.size() == 3);
        }
    }

    void chunks_do_not_matter() {
        for (const int size : {small, large}) {
            test_database file(static_cast<std::uint32_t>(size));
            file.flip(file.leaves().at(7), place);
            file.bytes.chop(100);
            const QString expected = told(check(file));
            QVERIFY(expected.contains(QStringLiteral("checksum")) && expected.contains(QStringLiteral("cut off")));
            for (const int chunk : {997, 4096, 65535, 65537, 1 << 24}) {
                QCOMPARE(told(checked(ese_database_checker(), file.bytes, chunk)), expected);
            }
        }
    }

    void state_and_times() {
        test_database file(small);
        for (const int header : {0, small}) {
            file.bytes[header + 52] = 2;
            file.bytes.replace(header + 64, 8, QByteArray::fromHex("3b3a171f0c790100"));
            file.bytes.replace(header + 72, 8, QByteArray::fromHex("0102030405770000"));
        }
        file.mend_header();
        const file_health health = check(file);
        QCOMPARE(health.notes, QStringList(QStringLiteral("the ESE database was not shut down cleanly; its transaction "
                                                          "logs are not applied")));
        QCOMPARE(health.ese->state, QStringLiteral("dirty"));
        QCOMPARE(health.ese->last_consistent, QStringLiteral("2021-12-31T23:58:59Z"));
        QCOMPARE(health.ese->last_attached, QStringLiteral("2019-05-04T03:02:01"));
        QVERIFY(health.ese->last_detached.isNull());
    }

    // Newer versions of Windows have fields there, which their checksum counts and the reader's does not.
    void bytes_behind_the_known_header_fields() {
        test_database file(small);
        file.bytes[700] = 1;
        QCOMPARE(check(file).problem, QString());
        QVERIFY(check(file).notes.join(QString()).contains(QStringLiteral("behind the fields")));
        file.mend_header();
        QCOMPARE(check(file).problem,
                 QStringLiteral("the header of the ESE database is of a newer kind that cannot be read"));
    }

    // The copy tells the page size, so that the pages are judged all the same.
    void damaged_header() {
        for (const int size : {small, large}) {
            test_database file(static_cast<std::uint32_t>(size));
            file.bytes.replace(0, 400, QByteArray(400, '\xA7'));
            file.flip(file.damaged = file.leaves().at(7), place);
            const file_health health = check(file);
            QCOMPARE(health.problem, QStringLiteral("the header of the ESE database is damaged"));
            QCOMPARE(health.problems, texts(health));
            QVERIFY(
                texts(health).value(0).startsWith(QStringLiteral("damaged page %1 (Container_3): ").arg(file.damaged)));
        }
    }

    void many_damaged_pages() {
        test_database file(small);
        file.bytes += QByteArray(1200 * small, '\x5A');
        const file_health health = check(file);
        QCOMPARE(health.ese->damaged_pages, qint64{1200});
        QCOMPARE(health.ese->damaged.size(), 1000);
        QCOMPARE(health.problems.size(), 21);
        QCOMPARE(health.problems.last(), QStringLiteral("1180 more of its pages are damaged"));
    }
};

QTEST_GUILESS_MAIN(test_ese_health)
#include "test_ese_health.moc"
