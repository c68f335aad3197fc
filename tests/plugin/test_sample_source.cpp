// SPDX-License-Identifier: MIT
// The whole sample source through the built library: all nine tables, typed, and the whole log, against golden files.
#include "evidence/sample_source.h"
#include "tests/plugin/loaded_plugin.h"
#include "tests/support/test_support.h"

#include <QDir>
#include <QDirIterator>
#include <QRegularExpression>
#include <QtTest>

namespace {

const QStringList tables = {QStringLiteral("time_reminders"),   QStringLiteral("place_reminders"),
                            QStringLiteral("contact_triggers"), QStringLiteral("latest_audio_search"),
                            QStringLiteral("graphed_cache"),    QStringLiteral("cache_files"),
                            QStringLiteral("cookies"),          QStringLiteral("domstore"),
                            QStringLiteral("searches")};

// Every file and folder below path with its size, and every file's content.
QMap<QString, QByteArray> everything_below(const QString& path) {
    QMap<QString, QByteArray> found;
    QDirIterator entries(path, QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot,
                         QDirIterator::Subdirectories);
    while (entries.hasNext()) {
        QFile file(entries.next());
        const QByteArray content = file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("a folder");
        const QDateTime changed = entries.fileInfo().lastModified();
        found.insert(entries.filePath(), content + changed.toString(Qt::ISODateWithMs).toUtf8());
    }
    return found;
}

} // namespace

class test_sample_source : public QObject {
    Q_OBJECT

    QTemporaryDir folder;
    QString root() const { return folder.path() + QStringLiteral("/source/"); }

    void run(const QStringList& users, const QString& result) const {
        const loaded_plugin plugin;
        plugin->pub_set_essentials();
        plugin->pub_set_engine_type(0);
        struct_GLOBAL_COMMON_VANTOR_AND_ARTIFACT_general_info general;
        general.debug_mode_status = general.debug_print_in_file = true;
        general.debug_file_path = result + QStringLiteral(".log");
        plugin->pub_set_general_info(general);
        struct_GLOBAL_COMMON_VANTOR_AND_ARTIFACT_source_info source;
        source.fs_extraction_source_path = root();
        source.os_scheme_display = QStringLiteral("Windows");
        source.os_scheme_internal = QStringLiteral("winOS");
        for (const QString& user : users) {
            source.system_account_QList.append({user, QStringLiteral("CORP\\") + user});
        }
        plugin->pub_set_source_info(source);
        plugin->pub_set_source_count(1);
        plugin->pub_set_essential_for_vantor_desk_extraction(tables, {});
        plugin->pub_set_result_directory(result);
        plugin->pub_create_db_tables();
        plugin->pub_find_source_file();
        plugin->pub_extract_artifacts();
        plugin->pub_remove_temporary_asthetics();
    }

    QStringList all_rows(const QString& result) const {
        QStringList lines;
        for (const QString& table : tables) {
            const QString path = result + QStringLiteral("/Artifacts_Result/Cortana/Cortana.sqlite");
            for (QString row : dump_table(path, table)) {
                if (table == QLatin1String("latest_audio_search")) {
                    static const QRegularExpression machine_times(QStringLiteral("_time=integer:\\d+"));
                    row.replace(machine_times, QStringLiteral("_time=integer:TIME"));
                }
                lines << table + QStringLiteral(": ") + row.replace(QLatin1Char('\n'), QStringLiteral("\\n"));
            }
        }
        return lines;
    }

    QStringList log_lines(const QString& result) const {
        QFile file(result + QStringLiteral(".log"));
        QString text = file.open(QIODevice::ReadOnly) ? QString::fromUtf8(file.readAll()) : QString();
        text.replace(QRegularExpression(QStringLiteral("^\\[[^\\]]*\\]"), QRegularExpression::MultilineOption),
                     QString());
        return text.replace(root(), QStringLiteral("ROOT/")).split(QLatin1Char('\n'), Qt::SkipEmptyParts);
    }

private Q_SLOTS:
    void initTestCase() { QVERIFY(write_sample_source(root())); }

    void one_profile() {
        const QString result = folder.filePath(QStringLiteral("one"));
        const auto before = everything_below(root());
        run({QStringLiteral("anna")}, result);
        QCOMPARE(everything_below(root()), before); // evidence is never changed
        const bool same_rows = matches_golden(all_rows(result), QStringLiteral(GOLDEN_DIR "/sample_rows.txt"));
        const bool same_log = matches_golden(log_lines(result), QStringLiteral(GOLDEN_DIR "/sample_log.txt"));
        QVERIFY(same_rows && same_log);
    }

    // One run over both: the same rows as one run each, but in the reminder tables, where the list positions go on over
    // both files: the first profile's rows come again under the second user, and the second one's pair otherwise.
    void both_profiles_in_one_run() {
        const QString apart = folder.filePath(QStringLiteral("apart"));
        run({QStringLiteral("anna")}, apart);
        run({QStringLiteral("bernd")}, apart);
        const QString together = folder.filePath(QStringLiteral("together"));
        run({QStringLiteral("anna"), QStringLiteral("bernd")}, together);
        const auto without_keys = [](QStringList rows) {
            return rows.replaceInStrings(QRegularExpression(QStringLiteral("INT=integer:\\d+")), QString());
        };
        const QRegularExpression reminders(QStringLiteral("^(time_reminders|place_reminders|contact_triggers): "));
        const QString of_anna = QStringLiteral("system_user=text:anna");
        QStringList added = without_keys(all_rows(together));
        QStringList lost;
        for (const QString& row : without_keys(all_rows(apart))) {
            if (!added.removeOne(row)) {
                lost << row;
            }
        }
        QCOMPARE(lost.filter(reminders), lost);
        QCOMPARE(lost.filter(of_anna), QStringList());
        QCOMPARE(added.filter(reminders), added);
        QCOMPARE(added.filter(of_anna), QStringList());
        QCOMPARE(added.size(), lost.size() + 7); // anna's seven under bernd
    }
};

QTEST_MAIN(test_sample_source)
#include "test_sample_source.moc"
