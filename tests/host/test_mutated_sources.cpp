// SPDX-License-Identifier: MIT
// A few of the mutated sources that fuzz/mutated_sources runs by the thousand.
#include "fuzz/mutated_runs.h"
#include "tests/support/test_text.h"

#include <QTemporaryDir>
#include <QtTest>

class test_mutated_sources : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void damage_costs_its_profile_only_and_is_told() {
        const QTemporaryDir folder;
        const mutation_result result = run_mutated_sources(QStringLiteral(HOST_PROGRAM), folder.path(), 2, 18);
        QCOMPARE(result.died, 0);
        QCOMPARE(result.wrong_sound, 0);
        int told = 0;
        for (const mutation_counts& one : result.counts) {
            const QString what = QLatin1String(one.file->name) + ": "_q + QLatin1String(one.how->name);
            QVERIFY2(one.other_untold == 0 && one.lost == 0 && one.over_limits == 0, qPrintable(what));
            QCOMPARE(one.profiles, 2);
            told += one.other_told + one.same_told;
        }
        QVERIFY(told > 0);
    }
};

QTEST_GUILESS_MAIN(test_mutated_sources)
#include "test_mutated_sources.moc"
