// SPDX-License-Identifier: MIT
// The whole sample source through the built library: all tables, typed, and the whole log, against golden files.
#include "samples/sample_source.h"
#include "tests/plugin/loaded_plugin.h"
#include "tests/support/test_support.h"

#include <QtTest>

class test_sample_source : public QObject {
    Q_OBJECT

    QTemporaryDir folder;
    QString root() const { return folder.path() + "/source/"_q; }

private Q_SLOTS:
    void initTestCase() { QVERIFY(write_sample_source(root())); }

    // One run over both profiles gives the same rows as one run each, but in the reminder tables, where the list
    // positions go on over both files: the first profile's rows come again under the second user, and the second one's
    // pair otherwise.
    void rows_and_log_data() {
        QTest::addColumn<QStringList>("users");
        QTest::newRow("sample") << QStringList("anna"_q);
        QTest::newRow("both_profiles") << QStringList({"anna"_q, "bernd"_q});
    }
    void rows_and_log() {
        QFETCH(QStringList, users);
        const QString name = QLatin1String(QTest::currentDataTag());
        const run_settings run{root(), folder.filePath(name), all_tables(), users};
        const QStringList before = everything_below(root());
        const loaded_plugin plugin;
        plugin.set_up(run);
        plugin.extract();
        plugin->pub_remove_temporary_asthetics();
        QCOMPARE(everything_below(root()), before); // evidence is never changed

        QStringList rows;
        for (const QString& table : run.tables) {
            QStringList of_table = dump_table(run.database(), table);
            if (table == "latest_audio_search"_q) {
                of_table.replaceInStrings(QRegularExpression("_time=integer:\\d+"_q), "_time=integer:TIME"_q);
            }
            rows << of_table.replaceInStrings("\n"_q, "\\n"_q)
                        .replaceInStrings(QRegularExpression("^"_q), table + ": "_q);
        }
        QStringList log = run.log_lines();
        log.replaceInStrings(QRegularExpression("^\\[[^\\]]*\\]"_q), QString()).replaceInStrings(root(), "ROOT/"_q);
        const bool same_rows = matches_golden(rows, GOLDEN_DIR "/"_q + name + "_rows.txt"_q);
        const bool same_log = matches_golden(log, GOLDEN_DIR "/"_q + name + "_log.txt"_q);
        QVERIFY(same_rows && same_log);
    }
};

QTEST_MAIN(test_sample_source)
#include "test_sample_source.moc"
