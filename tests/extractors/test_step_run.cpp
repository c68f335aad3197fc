// SPDX-License-Identifier: MIT
// The frame of all steps: when progress is told, and what becomes of rows that cannot be committed.
#include "extractors/step_run.h"
#include "tests/support/test_support.h"

#include <QtTest>

class test_step_run : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void progress_is_due_after_more_than_a_second() {
        QVERIFY(!is_progress_due(1000));
        QVERIFY(is_progress_due(1001));
    }

    // The disk fills between the last insert and the commit.
    void failed_commit_is_logged() {
        test_case_folder folder;
        const step_texts texts = {"void test::step()",
                                  "starts",
                                  "opening failed ",
                                  "ends",
                                  {"insert failed ", true, "error ", "query "},
                                  "insert into searches(search_keyword) values(?)"};
        const QString root = folder.root();
        const QString database = folder.database_path();
        const QString none;
        const bool cancel = false;
        int counted = 0;
        std::unique_ptr<full_disk> full;
        run_step({root, none, database, none, cancel, [&counted] { ++counted; }}, texts, [&full](step_run& run) {
            run.insert({QStringLiteral("lost")});
            full = std::make_unique<full_disk>(12 * 1024); // the journal fits, the table's page lies behind
            return true;
        });
        full.reset();
        QCOMPARE(counted, 1);
        QCOMPARE(folder.dump(QStringLiteral("searches")), QStringList());
        const QStringList log = folder.take_log();
        QCOMPARE(log.size(), 5);
        QCOMPARE(log.at(1), QStringLiteral("test::step:-- insert failed RESULT/Cortana.sqlite"));
        QVERIFY2(log.at(2).startsWith(QLatin1String("test::step:-- error ")) &&
                     log.at(2).endsWith(QLatin1String("Unable to commit transaction")),
                 qPrintable(log.at(2)));
        QCOMPARE(log.at(3), QStringLiteral("test::step:-- query COMMIT"));
        QCOMPARE(log.at(4), QStringLiteral("test::step:-- ends"));
    }
};

QTEST_MAIN(test_step_run)
#include "test_step_run.moc"
