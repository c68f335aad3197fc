// SPDX-License-Identifier: MIT
// Every statement against the bindings of its step: each value goes to the column that its label names.
#include "contract/table_names.h"
#include "extractors/step_columns.h"
#include "tests/support/test_text.h"

#include <QRegularExpression>
#include <QtTest>

class test_step_columns : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void labels_are_the_statement_s() {
        const QRegularExpression form("^insert into (\\w+) ?\\(bookmark,([^()]+)\\) ?values ?\\(0((?:,\\?)+)\\)$"_q,
                                      QRegularExpression::CaseInsensitiveOption);
        QStringList tables;
        for (const step_columns& step : all_step_columns()) {
            const QRegularExpressionMatch parts = form.match(QLatin1String(step.statement));
            QVERIFY2(parts.hasMatch(), step.statement);
            tables << parts.captured(1);
            QStringList columns = parts.captured(2).split(QLatin1Char(','));
            for (QString& column : columns) {
                column = column.trimmed();
            }
            QCOMPARE(step.labels, columns);
            QCOMPARE(columns.removeDuplicates(), 0);
            QCOMPARE(parts.captured(3).count(QLatin1Char('?')), step.labels.size());
        }
        QCOMPARE(tables, result_table_names() + QStringList("searches"_q)); // which two extractors fill
    }
};

QTEST_GUILESS_MAIN(test_step_columns)
#include "test_step_columns.moc"
