// SPDX-License-Identifier: MIT
// Whole runs of the built library: routing, selection, cancel, counters, the exact sequence of signals and log lines,
// plain and enciphered, and the life of the result database.
#include "common/encryptor_string.h"
#include "result_db/schema.h"
#include "tests/plugin/loaded_plugin.h"
#include "tests/support/test_support.h"

#include <QDir>
#include <QDirIterator>
#include <QtTest>

class test_plugin_run : public QObject {
    Q_OBJECT

    std::unique_ptr<QTemporaryDir> folder;
    std::unique_ptr<loaded_plugin> plugin;
    run_settings run;

    void search_and_extract() const {
        (*plugin)->pub_find_source_file();
        (*plugin)->pub_extract_artifacts();
    }
    QStringList shown(const QStringList& lines) const { return without_times(lines, folder->path(), "CASE"_q); }
    QStringList log_lines() const {
        return shown(QString::fromUtf8(whole_file(run.result + ".log"_q)).split(QLatin1Char('\n'), Qt::SkipEmptyParts));
    }
    QStringList rows() const { return dump_table(run.database(), "latest_audio_search"_q); }

private Q_SLOTS:
    // One recording in the source.
    void init() {
        folder = std::make_unique<QTemporaryDir>();
        run = {folder->path() + "/source/"_q, folder->path() + "/result"_q};
        const QString speech = run.root + "Users/anna/AppData/Local/Packages/Microsoft.Windows.Cortana_x/LocalState/"
                                          "LocalRecorder/Speech/"_q;
        QVERIFY(QDir().mkpath(speech));
        QFile file(speech + "a.wav"_q);
        QVERIFY(file.open(QIODevice::WriteOnly) && file.write("RIFF") == 4);
        plugin = std::make_unique<loaded_plugin>();
    }

    void whole_run_log() {
        plugin->set_up(run);
        QVERIFY(QFileInfo(run.result + "/Artifacts_Result/Cortana/tmp"_q).isDir());
        plugin->extract();
        QVERIFY(matches_golden(log_lines(), GOLDEN_DIR "/audio_run_log.txt"_q));
        QVERIFY(!QFileInfo::exists(run.result + "/Artifacts_Result/Cortana/tmp"_q));
        QCOMPARE(plugin->signals_seen.seen,
                 QStringList({"records 0"_q, "records 1"_q, "tables 1"_q, "records 1"_q, "records 1"_q}));
    }

    void enciphered_log_says_the_same() {
        run.encipher = true;
        plugin->set_up(run);
        plugin->extract();
        QStringList records =
            QString::fromLatin1(whole_file(run.result + ".log"_q)).split(QLatin1String(enciphered_record_separator));
        QCOMPARE(records.takeLast(), QString());
        encryptor_string cipher;
        for (QString& record : records) {
            record = cipher.decryptToString(record);
        }
        QVERIFY(matches_golden(shown(records), GOLDEN_DIR "/audio_run_log.txt"_q));
    }

    void selection_data() {
        QTest::addColumn<int>("engine_type");
        QTest::addColumn<QStringList>("tables");
        QTest::addColumn<int>("rows_written");
        QTest::addColumn<int>("tables_told");
        const QString audio = "latest_audio_search"_q;
        QStringList all;
        for (const result_table& table : result_tables()) {
            all << QLatin1String(table.name);
        }
        QTest::newRow("field edition") << 2 << QStringList(audio) << 1 << 1;
        QTest::newRow("unknown edition") << 3 << all << 0 << 0;
        QTest::newRow("no edition") << -1 << all << 0 << 0;
        QTest::newRow("nothing selected") << 0 << QStringList() << 0 << 0;
        QTest::newRow("other case") << 0 << QStringList("Latest_audio_search"_q) << 0 << 0;
        QTest::newRow("empty sources count as tables") << 0 << QStringList("searches"_q) << 0 << 1;
        QTest::newRow("all: the list of exported files has no step") << 0 << all << 1 << 9;
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
        QCOMPARE(log_lines().filter("[extract_plugins_artifacts]"_q).size(), 2);
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
        search_and_extract();
        run.scheme = scheme;
        plugin->set_source(run); // and no reset: the count is handed on
        (*plugin)->pub_set_ios_uid_backup_pointer(nullptr);
        plugin->signals_seen.seen.clear();
        plugin->extract();
        QCOMPARE(rows().size(), 1);
        const QString failed = "------FAILED------- supported os scheme internal not matched, received os "
                               "scheme internal =  %1, plugin name is Cortana"_q.arg(scheme);
        QCOMPARE(log_lines().filter(failed).size(), known ? 0 : 2);
        QCOMPARE(plugin->signals_seen.seen, known ? QStringList({"records 0"_q, "records 1"_q, "records 1"_q})
                                                  : QStringList({"records 0"_q, "records 1"_q}));
    }

    void operations_that_do_nothing() {
        plugin->set_up(run);
        search_and_extract();
        const auto state = [this] {
            QStringList files;
            QDirIterator found(folder->path(), QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot,
                               QDirIterator::Subdirectories);
            while (found.hasNext()) {
                files << found.next() + " %1"_q.arg(found.fileInfo().size());
            }
            files.sort();
            return files + log_lines() + rows() + plugin->signals_seen.seen;
        };
        const QStringList before = state();
        (*plugin)->pub_set_extended_attributes_list({"latest_audio_search"_q});
        (*plugin)->pub_generate_chat_html_pages();
        QCOMPARE(state(), before);
    }

    void cancelled_before() {
        plugin->set_up(run);
        (*plugin)->pub_find_source_file();
        (*plugin)->pub_cancel_extraction();
        (*plugin)->pub_extract_artifacts();
        QCOMPARE(plugin->signals_seen.seen, QStringList("records 0"_q));
        QCOMPARE(rows().size(), 0);
        QVERIFY(log_lines().last().endsWith("[pub_extract_artifacts] - START"_q));
    }

    // From a slot of the first table's signal: later tables start, write nothing, and are told all the same.
    void cancelled_from_a_slot() {
        run.tables = QStringList({"contact_triggers"_q, "latest_audio_search"_q});
        plugin->set_up(run);
        plugin->signals_seen.cancel_at_table_1 = plugin->get();
        plugin->extract();
        QCOMPARE(rows().size(), 0);
        QCOMPARE(plugin->signals_seen.seen.filter("tables"_q), QStringList({"tables 1"_q, "tables 2"_q}));
        const QStringList audio = log_lines().filter("[extract_audio_search_files]"_q);
        QCOMPARE(audio.size(), 1); // no end line
        QVERIFY(log_lines().last().endsWith("[pub_extract_artifacts] - END"_q));
    }

    void counts_go_on_over_extractions() {
        plugin->set_up(run);
        plugin->extract();
        plugin->signals_seen.seen.clear();
        (*plugin)->pub_extract_artifacts();
        QCOMPARE(plugin->signals_seen.seen,
                 QStringList({"records 0"_q, "records 2"_q, "tables 2"_q, "records 2"_q, "records 2"_q}));
    }

    void two_objects_share_the_switches() {
        plugin->set_up(run);
        const loaded_plugin second;
        second->pub_set_essentials(); // switches the first one's log off, too
        const int before = log_lines().size();
        (*plugin)->pub_create_db_tables();
        QCOMPARE(log_lines().size(), before);
    }
};

QTEST_MAIN(test_plugin_run)
#include "test_plugin_run.moc"
