// SPDX-License-Identifier: MIT
// Whole runs of the built library: routing, selection, cancel, counters, and the exact sequence of signals.
#include "samples/sample_source.h"
#include "tests/plugin/loaded_plugin.h"
#include "tests/support/test_support.h"

#include <QtTest>

class test_plugin_run : public QObject {
    Q_OBJECT

    std::unique_ptr<QTemporaryDir> folder;
    std::unique_ptr<loaded_plugin> plugin;
    run_settings run;

    QStringList rows() const { return dump_table(run.database(), "latest_audio_search"_q); }

private Q_SLOTS:
    // Three recordings in the source.
    void init() {
        folder = std::make_unique<QTemporaryDir>();
        run = {folder->path() + "/source/"_q, folder->path() + "/result"_q};
        QVERIFY(write_sample_speech({run.root, "anna"_q, 0}));
        plugin = std::make_unique<loaded_plugin>();
    }

    void signals_of_two_extractions() {
        const QString working_folder = run.result + "/Artifacts_Result/Cortana/tmp"_q;
        plugin->set_up(run);
        QVERIFY(QFileInfo(working_folder).isDir());
        plugin->extract();
        const QStringList before = everything_below(folder->path());
        (*plugin)->pub_set_extended_attributes_list({"latest_audio_search"_q}); // it does nothing, and so does this:
        (*plugin)->pub_generate_chat_html_pages();
        QCOMPARE(everything_below(folder->path()), before);
        (*plugin)->pub_extract_artifacts(); // the counts go on
        (*plugin)->pub_remove_temporary_asthetics();
        QVERIFY(!QFileInfo::exists(working_folder));
        QCOMPARE(plugin->signals_seen.seen,
                 QStringList({"records 0"_q, "records 3"_q, "tables 1"_q, "records 3"_q, "records 3"_q, //
                              "records 0"_q, "records 6"_q, "tables 2"_q, "records 6"_q, "records 6"_q}));
    }

    // Another source, profile and result, one account told twice: nothing of the first run is left.
    void second_run_of_one_object() {
        plugin->set_up(run);
        plugin->extract();
        const run_settings next{folder->path() + "/second/"_q,
                                folder->path() + "/next"_q,
                                {"latest_audio_search"_q},
                                {"bernd"_q, "bernd"_q}};
        QVERIFY(write_sample_speech({next.root, "bernd"_q, 0}) && write_sample_speech({next.root, "anna"_q, 0}));
        plugin->signals_seen.seen.clear();
        plugin->set_up(next);
        (*plugin)->pub_find_source_file(); // found anew by the next search
        plugin->extract();
        QCOMPARE(plugin->signals_seen.seen,
                 QStringList({"records 0"_q, "records 3"_q, "tables 1"_q, "records 3"_q, "records 3"_q}));
        const QString row = "system_user=text:bernd | domain_user=text:CORP\\bernd"_q;
        QCOMPARE(dump_table(next.database(), "latest_audio_search"_q, {"system_user"_q, "domain_user"_q}),
                 QStringList({row, row, row}));
        QCOMPARE(rows().size(), 3);
        QCOMPARE(run.log_lines().filter("second/"_q), QStringList());
        QCOMPARE(next.log_lines().filter("source/"_q), QStringList());
    }

    void selection_data() {
        QTest::addColumn<int>("engine_type");
        QTest::addColumn<QStringList>("tables");
        QTest::addColumn<int>("rows_written");
        QTest::addColumn<int>("tables_told");
        QTest::newRow("field edition") << 2 << QStringList("latest_audio_search"_q) << 3 << 1;
        QTest::newRow("unknown edition") << 3 << all_tables() << 0 << 0;
        QTest::newRow("no edition") << -1 << all_tables() << 0 << 0;
        QTest::newRow("nothing selected") << 0 << QStringList() << 0 << 0;
        QTest::newRow("other case") << 0 << QStringList("Latest_audio_search"_q) << 0 << 0;
        QTest::newRow("empty sources count as tables") << 0 << QStringList("searches"_q) << 0 << 1;
        QTest::newRow("all: the list of exported files has no step") << 0 << all_tables() << 3 << 9;
    }
    void selection() {
        QFETCH(int, engine_type);
        QFETCH(QStringList, tables);
        QFETCH(int, tables_told);
        run.engine_type = engine_type;
        run.tables = tables;
        plugin->set_up(run);
        plugin->extract();
        QTEST(rows().size(), "rows_written");
        const QStringList seen = plugin->signals_seen.seen;
        QCOMPARE(seen.filter("tables"_q).size(), tables_told);
        if (tables_told == 0) { // the start, the front's end, the plugin's end
            QCOMPARE(seen, QStringList({"records 0"_q, "records 0"_q, "records 0"_q}));
        }
        QCOMPARE(run.log_lines().filter("[extract_plugins_artifacts]"_q).size(), 2);
    }

    void other_schemes_data() {
        QTest::addColumn<QString>("scheme");
        QTest::addColumn<bool>("known");
        QTest::newRow("macOS") << "macOS" << true;
        QTest::newRow("iOS_UID") << "iOS_UID" << true;
        QTest::newRow("other case") << "winos" << false;
        QTest::newRow("none") << "" << false;
    }
    void other_schemes() {
        QFETCH(QString, scheme);
        QFETCH(bool, known);
        plugin->set_up(run);
        plugin->extract();
        run.scheme = scheme;
        plugin->set_source(run); // and no reset: the count is handed on
        (*plugin)->pub_set_ios_uid_backup_pointer(nullptr);
        plugin->signals_seen.seen.clear();
        plugin->extract();
        QCOMPARE(rows().size(), 3);
        const QString failed = "------FAILED------- supported os scheme internal not matched, received os "
                               "scheme internal =  %1, plugin name is Cortana"_q.arg(scheme);
        QCOMPARE(run.log_lines().filter(failed).size(), known ? 0 : 2);
        QCOMPARE(plugin->signals_seen.seen, known ? QStringList({"records 0"_q, "records 3"_q, "records 3"_q})
                                                  : QStringList({"records 0"_q, "records 3"_q}));
    }

    void cancelled_before_and_reset() {
        plugin->set_up(run);
        (*plugin)->pub_find_source_file();
        (*plugin)->pub_cancel_extraction();
        (*plugin)->pub_extract_artifacts();
        QCOMPARE(plugin->signals_seen.seen, QStringList("records 0"_q));
        QCOMPARE(rows().size(), 0);
        const QStringList log = run.log_lines();
        QVERIFY(log.last().endsWith("[pub_extract_artifacts] - START"_q));
        (*plugin)->pub_set_essentials(); // takes the cancelling back and switches the log off
        (*plugin)->pub_extract_artifacts();
        QCOMPARE(rows().size(), 3);
        QCOMPARE(run.log_lines(), log);
    }

    // From a slot of the first table's signal: later tables start, write nothing, and are told all the same.
    void cancelled_from_a_slot() {
        run.tables = QStringList({"contact_triggers"_q, "latest_audio_search"_q});
        plugin->set_up(run);
        plugin->signals_seen.cancels_at_a_table = true;
        plugin->extract();
        QCOMPARE(rows().size(), 0);
        QCOMPARE(plugin->signals_seen.seen.filter("tables"_q), QStringList({"tables 1"_q, "tables 2"_q}));
        QCOMPARE(run.log_lines().filter("[extract_audio_search_files]"_q).size(), 1); // no end line
        QVERIFY(run.log_lines().last().endsWith("[pub_extract_artifacts] - END"_q));
    }
};

QTEST_MAIN(test_plugin_run)
#include "test_plugin_run.moc"
