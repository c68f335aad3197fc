// SPDX-License-Identifier: MIT
// Whole runs of the built library: routing, selection, cancel, counters, the exact sequence of signals and log lines,
// plain and enciphered, and the life of the result database.
#include "common/encryptor_string.h"
#include "result_db/schema.h"
#include "tests/plugin/loaded_plugin.h"
#include "tests/support/test_support.h"

#include <QDir>
#include <QDirIterator>
#include <QRegularExpression>
#include <QtTest>

namespace {

const QString speech_file =
    QStringLiteral("Users/anna/AppData/Local/Packages/Microsoft.Windows.Cortana_x/LocalState/LocalRecorder/Speech/");

// A run's settings, with what most runs share.
struct run_settings {
    int engine_type = 0;
    QString scheme = QStringLiteral("winOS");
    QStringList tables = {QStringLiteral("latest_audio_search")};
    bool encipher = false;
};

} // namespace

class test_plugin_run : public QObject {
    Q_OBJECT

    std::unique_ptr<QTemporaryDir> folder;
    std::unique_ptr<loaded_plugin> plugin;
    QString root() const { return folder->path() + QStringLiteral("/source/"); }
    QString result() const { return folder->path() + QStringLiteral("/result"); }
    QString database() const { return result() + QStringLiteral("/Artifacts_Result/Cortana/Cortana.sqlite"); }
    QString log_path() const { return folder->path() + QStringLiteral("/debug.log"); }

    void add_file(const QString& path) const {
        QDir().mkpath(QFileInfo(root() + path).path());
        QFile file(root() + path);
        QVERIFY(file.open(QIODevice::WriteOnly) && file.write("RIFF") == 4);
    }

    void set_source(const QString& scheme) {
        struct_GLOBAL_COMMON_VANTOR_AND_ARTIFACT_source_info source;
        source.fs_extraction_source_path = root();
        source.os_scheme_display = QStringLiteral("Windows");
        source.os_scheme_internal = scheme;
        source.system_account_QList.append({QStringLiteral("anna"), QStringLiteral("CORP\\anna")});
        (*plugin)->pub_set_source_info(source);
    }

    void set_up(const run_settings& settings) {
        host_interface* host = plugin->get();
        host->pub_set_essentials();
        host->pub_set_engine_type(settings.engine_type);
        struct_GLOBAL_COMMON_VANTOR_AND_ARTIFACT_general_info general;
        general.debug_mode_status = general.debug_print_in_file = true;
        general.debug_encryption_status = settings.encipher;
        general.debug_file_path = log_path();
        host->pub_set_general_info(general);
        host->pub_set_desktop_info({});
        set_source(settings.scheme);
        host->pub_set_source_count(1);
        host->pub_set_essential_for_vantor_desk_extraction(settings.tables, {QStringLiteral("ignored")});
        host->pub_set_result_directory(result());
        host->pub_create_db_tables();
    }

    void extract() {
        (*plugin)->pub_find_source_file();
        (*plugin)->pub_extract_artifacts();
        (*plugin)->pub_remove_temporary_asthetics();
    }

    // The log without its times, paths below the temporary folder shortened.
    QStringList log_lines() const {
        QFile file(log_path());
        QString text = file.open(QIODevice::ReadOnly) ? QString::fromUtf8(file.readAll()) : QString();
        return without_times(text.split(QLatin1Char('\n'), Qt::SkipEmptyParts));
    }
    QStringList without_times(QStringList lines) const {
        lines.replaceInStrings(QRegularExpression(QStringLiteral("^\\[[^\\]]*\\]")), QString());
        return lines.replaceInStrings(folder->path(), QStringLiteral("CASE"));
    }
    qint64 rows(const QString& table = QStringLiteral("latest_audio_search")) const {
        return dump_table(database(), table).size();
    }

private Q_SLOTS:
    void init() {
        folder = std::make_unique<QTemporaryDir>();
        QDir().mkpath(root());
        plugin = std::make_unique<loaded_plugin>();
    }

    void whole_run_log() {
        add_file(speech_file + QStringLiteral("a.wav"));
        set_up({});
        QVERIFY(QFileInfo(result() + QStringLiteral("/Artifacts_Result/Cortana/tmp")).isDir());
        extract();
        QVERIFY(matches_golden(log_lines(), QStringLiteral(GOLDEN_DIR "/audio_run_log.txt")));
        QVERIFY(!QFileInfo::exists(result() + QStringLiteral("/Artifacts_Result/Cortana/tmp")));
        QCOMPARE(plugin->signals_seen.seen,
                 QStringList({QStringLiteral("records 0"), QStringLiteral("records 1"), QStringLiteral("tables 1"),
                              QStringLiteral("records 1"), QStringLiteral("records 1")}));
    }

    void enciphered_log_says_the_same() {
        add_file(speech_file + QStringLiteral("a.wav"));
        run_settings settings;
        settings.encipher = true;
        set_up(settings);
        extract();
        QFile file(log_path());
        QVERIFY(file.open(QIODevice::ReadOnly));
        QStringList records = QString::fromLatin1(file.readAll()).split(QLatin1String(enciphered_record_separator));
        QCOMPARE(records.takeLast(), QString());
        encryptor_string cipher;
        for (QString& record : records) {
            record = cipher.decryptToString(record);
        }
        QVERIFY(matches_golden(without_times(records), QStringLiteral(GOLDEN_DIR "/audio_run_log.txt")));
    }

    void selection_data() {
        QTest::addColumn<int>("engine_type");
        QTest::addColumn<QStringList>("tables");
        QTest::addColumn<int>("rows_written");
        QTest::addColumn<int>("tables_told");
        const QString audio = QStringLiteral("latest_audio_search");
        QStringList all;
        for (const result_table& table : result_tables()) {
            all << QLatin1String(table.name);
        }
        QTest::newRow("field edition") << 2 << QStringList(audio) << 1 << 1;
        QTest::newRow("unknown edition") << 3 << all << 0 << 0;
        QTest::newRow("no edition") << -1 << all << 0 << 0;
        QTest::newRow("nothing selected") << 0 << QStringList() << 0 << 0;
        QTest::newRow("other case") << 0 << QStringList(QStringLiteral("Latest_audio_search")) << 0 << 0;
        QTest::newRow("empty sources count as tables") << 0 << QStringList(QStringLiteral("searches")) << 0 << 1;
        QTest::newRow("all: the list of exported files has no step") << 0 << all << 1 << 9;
    }
    void selection() {
        QFETCH(int, engine_type);
        QFETCH(QStringList, tables);
        QFETCH(int, rows_written);
        QFETCH(int, tables_told);
        add_file(speech_file + QStringLiteral("a.wav"));
        run_settings settings;
        settings.engine_type = engine_type;
        settings.tables = tables;
        set_up(settings);
        extract();
        QCOMPARE(rows(), qint64(rows_written));
        const QStringList seen = plugin->signals_seen.seen;
        QCOMPARE(seen.filter(QStringLiteral("tables")).size(), tables_told);
        if (tables_told == 0) { // the start, the front's end, the plugin's end
            QCOMPARE(seen, QStringList({QStringLiteral("records 0"), QStringLiteral("records 0"),
                                        QStringLiteral("records 0")}));
        }
        QCOMPARE(log_lines().filter(QStringLiteral("[extract_plugins_artifacts]")).size(), 2);
    }

    void other_schemes_data() {
        QTest::addColumn<QString>("scheme");
        QTest::addColumn<bool>("known");
        for (const char* scheme : {"macOS", "iOS_UID"}) {
            QTest::newRow(scheme) << QString::fromLatin1(scheme) << true;
        }
        for (const char* scheme : {"winos", "", "Windows"}) {
            QTest::addRow("\"%s\"", scheme) << QString::fromLatin1(scheme) << false;
        }
    }
    void other_schemes() {
        QFETCH(QString, scheme);
        QFETCH(bool, known);
        add_file(speech_file + QStringLiteral("a.wav"));
        set_up({});
        (*plugin)->pub_find_source_file();
        (*plugin)->pub_extract_artifacts();
        set_source(scheme); // and no reset: the count is handed on
        (*plugin)->pub_set_ios_uid_backup_pointer(nullptr);
        plugin->signals_seen.seen.clear();
        extract();
        QCOMPARE(rows(), qint64(1));
        const QString failed =
            QStringLiteral("------FAILED------- supported os scheme internal not matched, received os "
                           "scheme internal =  %1, plugin name is Cortana")
                .arg(scheme);
        QCOMPARE(log_lines().filter(failed).size(), known ? 0 : 2);
        QCOMPARE(
            plugin->signals_seen.seen,
            known ? QStringList({QStringLiteral("records 0"), QStringLiteral("records 1"), QStringLiteral("records 1")})
                  : QStringList({QStringLiteral("records 0"), QStringLiteral("records 1")}));
    }

    void operations_that_do_nothing() {
        add_file(speech_file + QStringLiteral("a.wav"));
        set_up({});
        (*plugin)->pub_find_source_file();
        (*plugin)->pub_extract_artifacts();
        const auto state = [this] {
            QStringList files;
            QDirIterator found(folder->path(), QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot,
                               QDirIterator::Subdirectories);
            while (found.hasNext()) {
                files << found.next() + QStringLiteral(" %1").arg(found.fileInfo().size());
            }
            files.sort();
            return files + log_lines() + dump_table(database(), QStringLiteral("latest_audio_search")) +
                   plugin->signals_seen.seen;
        };
        const QStringList before = state();
        (*plugin)->pub_set_extended_attributes_list({QStringLiteral("latest_audio_search")});
        (*plugin)->pub_generate_chat_html_pages();
        QCOMPARE(state(), before);
    }

    void cancelled_before() {
        add_file(speech_file + QStringLiteral("a.wav"));
        set_up({});
        (*plugin)->pub_find_source_file();
        (*plugin)->pub_cancel_extraction();
        (*plugin)->pub_extract_artifacts();
        QCOMPARE(plugin->signals_seen.seen, QStringList(QStringLiteral("records 0")));
        QCOMPARE(rows(), qint64(0));
        QVERIFY(log_lines().last().endsWith(QStringLiteral("[pub_extract_artifacts] - START")));
    }

    // From a slot of the first table's signal: later tables start, write nothing, and are told all the same.
    void cancelled_from_a_slot() {
        add_file(speech_file + QStringLiteral("a.wav"));
        run_settings settings;
        settings.tables = QStringList({QStringLiteral("contact_triggers"), QStringLiteral("latest_audio_search")});
        set_up(settings);
        plugin->signals_seen.cancel_at_table_1 = plugin->get();
        extract();
        QCOMPARE(rows(), qint64(0));
        QCOMPARE(plugin->signals_seen.seen.filter(QStringLiteral("tables")),
                 QStringList({QStringLiteral("tables 1"), QStringLiteral("tables 2")}));
        const QStringList audio = log_lines().filter(QStringLiteral("[extract_audio_search_files]"));
        QCOMPARE(audio.size(), 1); // no end line
        QVERIFY(log_lines().last().endsWith(QStringLiteral("[pub_extract_artifacts] - END")));
    }

    void counts_go_on_over_extractions() {
        add_file(speech_file + QStringLiteral("a.wav"));
        set_up({});
        extract();
        plugin->signals_seen.seen.clear();
        (*plugin)->pub_extract_artifacts();
        QCOMPARE(plugin->signals_seen.seen,
                 QStringList({QStringLiteral("records 0"), QStringLiteral("records 2"), QStringLiteral("tables 2"),
                              QStringLiteral("records 2"), QStringLiteral("records 2")}));
    }

    void two_objects_share_the_switches() {
        set_up({});
        const loaded_plugin second;
        second->pub_set_essentials(); // switches the first one's log off, too
        const int before = log_lines().size();
        (*plugin)->pub_create_db_tables();
        QCOMPARE(log_lines().size(), before);
    }
};

QTEST_MAIN(test_plugin_run)
#include "test_plugin_run.moc"
