// SPDX-License-Identifier: MIT
// Damage whose checksums were mended: what libesedb refuses of it is told, and what it takes for rows although they
// cannot be right.
#include "checked_file.h"
#include "host/health/ese_probe.h"

#include <QtTest>

#include <functional>

using change = std::function<void(test_database& file)>;
Q_DECLARE_METATYPE(change)

namespace {

const QString cookies = QStringLiteral("cookies");

// Of row 2 of a leaf in the middle: last fixed and last variable column, end of the fixed part, Id, NULL bits, and the
// array of tagged columns with its only one.
void put_in_row(test_database& file, int place, std::uint16_t value) {
    file.damaged = file.leaves().at(7);
    put_le(file.entry(file.damaged, 2) + place, value);
    file.mend(file.damaged);
}

// Of the first row, whose value is a long one.
void put_in_first_row(test_database& file, int place, std::uint16_t value) {
    const quint32 leaf = get_le<std::uint32_t>(file.entry(file.pages(test_database::container, 4, 4).at(0), 0));
    put_le(file.entry(leaf, 0) + place, value);
    file.mend(leaf);
}

QStringList told(const test_database& file, const QString& name, const QStringList& selected, QStringList& notes) {
    const QTemporaryDir folder;
    evidence_record record;
    record.path = folder.filePath(name);
    record.location = QFile::encodeName(record.path);
    QFile written(record.path);
    written.open(QIODevice::WriteOnly);
    written.write(file.bytes);
    written.close();
    record.health = checked(ese_database_checker(), file.bytes);
    health_report report;
    probe_ese_database(
        record, selected, [] { return false; }, report);
    for (const finding& one : qAsConst(report.notes)) {
        notes << one.reason;
    }
    QStringList problems;
    for (const finding& one : qAsConst(report.problems)) {
        problems << one.reason;
    }
    return problems;
}

} // namespace

class test_ese_probe : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void tells_what_is_refused_data() {
        QTest::addColumn<change>("damage");
        QTest::addColumn<QString>("problem"); // part of them; empty: none
        const auto add = [](const char* name, const char* problem, const change& damage) {
            QTest::newRow(name) << damage << QString::fromLatin1(problem);
        };
        const char* const misbuilt = "rows of Container_3 on 1 pages are not built as its rows are";
        add("nothing", "", [](test_database&) {});
        add("changed value", "", [](test_database& file) { put_in_row(file, 4, 77); });
        add("fixed part takes all", misbuilt, [](test_database& file) { put_in_row(file, 2, 394); });
        add("fixed part ends outside", "libesedb refuses 1 of 4000 rows of Container_3; none is read from row ",
            [](test_database& file) { put_in_row(file, 2, 0x7ffe); });
        add("tagged value outside", "libesedb refuses 1 of 4000 rows of Container_3; none is read from row ",
            [](test_database& file) { put_in_row(file, 11, 0x3ffc); });
        add("column number of no tagged one", misbuilt, [](test_database& file) { put_in_row(file, 9, 3); });
        add("reference to no long value", "libesedb cannot read 1 long values of Container_3",
            [](test_database& file) { put_in_first_row(file, 14, 0x7777); });
        add("long value under another number", "libesedb cannot read 1 long values of Container_3",
            [](test_database& file) {
                const quint32 leaf = file.leaves(test_database::long_values).at(0);
                char* const key_end = file.entry(leaf, 0) - 1; // of the first value's head
                *key_end = static_cast<char>(*key_end - 1);
                file.mend(leaf);
            });
        add("rows on a page of another kind", "libesedb ", [](test_database& file) {
            const quint32 leaf = file.leaves().at(7);
            put_le(file.at(leaf, 36), file.flags(leaf) | 0x20);
            file.mend(leaf);
        });
    }
    void tells_what_is_refused() {
        QFETCH(change, damage);
        QFETCH(QString, problem);
        static const test_database sound[] = {test_database(4096), test_database(32768)};
        for (test_database file : sound) {
            damage(file);
            QStringList notes;
            const QStringList problems = told(file, QStringLiteral("WebCacheV01.dat"), {cookies}, notes);
            QCOMPARE(notes, QStringList(QStringLiteral("the ESE database has no table Containers")));
            QCOMPARE(problems.isEmpty(), problem.isEmpty());
            QVERIFY2(problems.join(QLatin1Char('|')).contains(problem), qPrintable(problems.join(QLatin1Char('|'))));
        }
    }

    void asks_for_wanted_tables_only_data() {
        QTest::addColumn<QString>("table");
        QTest::addColumn<QStringList>("missing");
        const auto tables = [](const char* last) {
            return QStringList{QStringLiteral("Triggers"), QStringLiteral("Reminders"), QLatin1String(last)};
        };
        QTest::newRow("time") << "time_reminders" << tables("TimeTriggers");
        QTest::newRow("place") << "place_reminders" << tables("LocationTriggers");
        QTest::newRow("contact") << "contact_triggers" << tables("ContactTriggers");
        QTest::newRow("none") << "searches" << QStringList();
    }
    void asks_for_wanted_tables_only() {
        QFETCH(QString, table);
        QFETCH(QStringList, missing);
        QStringList notes;
        QCOMPARE(told(test_database(4096), QStringLiteral("CortanaCoreDb.dat"), {table}, notes), QStringList());
        QCOMPARE(notes, missing.replaceInStrings(QRegularExpression(QStringLiteral("^")),
                                                 QStringLiteral("the ESE database has no table ")));
    }
};

QTEST_GUILESS_MAIN(test_ese_probe)
#include "test_ese_probe.moc"
