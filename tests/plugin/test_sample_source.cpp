// SPDX-License-Identifier: MIT
// The whole sample source through the built library: all nine tables, typed, and the whole log, against golden files.
#include "evidence/sample_source.h"
#include "tests/plugin/loaded_plugin.h"
#include "tests/support/test_support.h"

#include <QDir>
#include <QDirIterator>
#include <QtTest>

namespace {

const QStringList tables = {"time_reminders"_q, "place_reminders"_q, "contact_triggers"_q, "latest_audio_search"_q,
                            "graphed_cache"_q,  "cache_files"_q,     "cookies"_q,          "domstore"_q,
                            "searches"_q};

// Every file and folder below top with its size, and every file's content.
QMap<QString, QByteArray> everything_below(const QString& top) {
    QMap<QString, QByteArray> found;
    QDirIterator entries(top, QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot,
                         QDirIterator::Subdirectories);
    while (entries.hasNext()) {
        const QString path = entries.next();
        const QByteArray changed = entries.fileInfo().lastModified().toString(Qt::ISODateWithMs).toUtf8();
        found.insert(path, (entries.fileInfo().isDir() ? QByteArray("a folder") : whole_file(path)) + changed);
    }
    return found;
}

} // namespace

class test_sample_source : public QObject {
    Q_OBJECT

    QTemporaryDir folder;
    QString root() const { return folder.path() + "/source/"_q; }

    void run(const QStringList& users, const QString& result) const {
        const loaded_plugin plugin;
        plugin.set_up({root(), result, tables, users});
        plugin.extract();
    }

    QStringList all_rows(const QString& result) const {
        QStringList lines;
        for (const QString& table : tables) {
            const QString path = run_settings{root(), result}.database();
            for (QString row : dump_table(path, table)) {
                if (table == QLatin1String("latest_audio_search")) {
                    static const QRegularExpression machine_times("_time=integer:\\d+"_q);
                    row.replace(machine_times, "_time=integer:TIME"_q);
                }
                lines << table + ": "_q + row.replace(QLatin1Char('\n'), "\\n"_q);
            }
        }
        return lines;
    }

    QStringList log_lines(const QString& result) const {
        const QString text = QString::fromUtf8(whole_file(result + ".log"_q));
        return without_times(text.split(QLatin1Char('\n'), Qt::SkipEmptyParts), root(), "ROOT/"_q);
    }

private Q_SLOTS:
    void initTestCase() { QVERIFY(write_sample_source(root())); }

    void one_profile() {
        const QString result = folder.filePath("one"_q);
        const auto before = everything_below(root());
        run({"anna"_q}, result);
        QCOMPARE(everything_below(root()), before); // evidence is never changed
        const bool same_rows = matches_golden(all_rows(result), GOLDEN_DIR "/sample_rows.txt"_q);
        const bool same_log = matches_golden(log_lines(result), GOLDEN_DIR "/sample_log.txt"_q);
        QVERIFY(same_rows && same_log);
    }

    // One run over both: the same rows as one run each, but in the reminder tables, where the list positions go on over
    // both files: the first profile's rows come again under the second user, and the second one's pair otherwise.
    void both_profiles_in_one_run() {
        const QString apart = folder.filePath("apart"_q);
        run({"anna"_q}, apart);
        run({"bernd"_q}, apart);
        const QString together = folder.filePath("together"_q);
        run({"anna"_q, "bernd"_q}, together);
        const auto without_keys = [](QStringList rows) {
            return rows.replaceInStrings(QRegularExpression("INT=integer:\\d+"_q), QString());
        };
        const QRegularExpression reminders("^(time_reminders|place_reminders|contact_triggers): "_q);
        const QString of_anna = "system_user=text:anna"_q;
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
