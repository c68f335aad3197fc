// SPDX-License-Identifier: MIT
// A table with more rows than a sheet takes goes on in the next one; what is checked is read by another program.
#include "host/exports/xlsx_check.h"
#include "host/exports/xlsx_writer.h"

#include <QProcess>
#include <QTemporaryDir>
#include <QtTest>

class test_xlsx_sheets : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void splits_tables() {
        const QTemporaryDir base;
        QStringList words{
            QStringLiteral("-c"),
            QStringLiteral("import openpyxl, sys\nfor book in sys.argv[1:]: print([(s.title, [r[0] for r in "
                           "s.iter_rows(min_row=2, values_only=True)]) for s in "
                           "openpyxl.load_workbook(book)])")};
        for (const int rows : {0, 2, 3, 5}) {
            const QString path = base.filePath(QString::number(rows));
            export_folder folder(path, true);
            xlsx_writer writer(folder, 3);
            const export_table table{"t", {{"INT", column_kind::key, "", "", ""}}, {}, {}, false};
            QVERIFY(writer.begin(table));
            for (int i = 1; i <= rows; ++i) {
                QVERIFY(writer.row({table, {{export_cell::integer, i, 0, {}}}, {{}}}));
            }
            QVERIFY(writer.end() && writer.finish() && folder.put_all_in_place());
            QCOMPARE(writer.counts().rows_out, qint64(rows));
            words << path + QStringLiteral("/cortana.xlsx");
        }
        QProcess python;
        python.start(QStringLiteral(PYTHON), words);
        QVERIFY(python.waitForFinished());
        QCOMPARE(python.readAllStandardOutput(), // with the keys on them
                 QByteArray("[('t', [])]\n"
                            "[('t', ['1', '2'])]\n"
                            "[('t', ['1', '2']), ('t (2)', ['3'])]\n"
                            "[('t', ['1', '2']), ('t (2)', ['3', '4']), ('t (3)', ['5'])]\n"));
    }

    void sees_a_workbook_that_lacks_rows() {
        const QTemporaryDir base;
        export_folder folder(base.path(), true);
        xlsx_writer writer(folder);
        const export_table table{"t", {{"INT", column_kind::key, "", "", ""}}, {}, {}, false};
        writer.begin(table);
        constexpr int rows = 20000; // several blocks of the reader
        for (int i = 0; i < rows; ++i) {
            writer.row({table, {{export_cell::integer, i, 0, {}}}, {{}}});
        }
        QVERIFY(writer.end() && writer.finish() && folder.put_all_in_place());
        const QByteArray file = QFile::encodeName(base.filePath(QStringLiteral("cortana.xlsx")));
        QCOMPARE(xlsx_trouble(file, {rows + 1}), QString());
        QVERIFY(!xlsx_trouble(file, {rows}).isEmpty());
        QVERIFY(!xlsx_trouble(file, {rows + 2}).isEmpty());
        QVERIFY(!xlsx_trouble(file, {rows + 1, 1}).isEmpty());
        QFile cut(QString::fromUtf8(file));
        QVERIFY(cut.resize(cut.size() / 2));
        QVERIFY(!xlsx_trouble(file, {rows + 1}).isEmpty());
    }
};

QTEST_GUILESS_MAIN(test_xlsx_sheets)
#include "test_xlsx_sheets.moc"
