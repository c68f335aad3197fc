// SPDX-License-Identifier: MIT
// A cancel at every place of each step: what was written stays, and there is an end line only when the step had nothing
// left to ask.
#include "ese/contact_triggers.h"
#include "ese/place_triggers.h"
#include "ese/timetriggers.h"
#include "extractors/steps.h"
#include "registry/search_from_com.h"
#include "registry/text_search_registry.h"
#include "samples/sample_source.h"
#include "tests/support/test_support.h"

#include <QtTest>

namespace {

using fill = std::function<void(const step_context& context, const QStringList& sources)>;

template <class Reader>
fill with_reader(void (*step)(const step_context&, std::unique_ptr<Reader>&, const QStringList&)) {
    return [step](const step_context& context, const QStringList& sources) {
        std::unique_ptr<Reader> reader;
        step(context, reader, sources);
    };
}

struct outcome {
    int rows;
    int ends;
};

} // namespace

Q_DECLARE_METATYPE(fill)

class test_cancel : public QObject {
    Q_OBJECT

    test_case_folder folder{{{"anna"_q, "CORP\\anna"_q}, {"bernd"_q, QString()}}};
    std::unique_ptr<cortana_winos> front;

    // Runs a step that is cancelled as soon as so many rows are written; -1: never.
    outcome run(const fill& step, const QString& table, const QStringList& sources, int cancel_at) {
        const QString root = folder.root();
        const QString database = folder.database_path();
        const QString none = ""_q;
        bool cancelled = cancel_at == 0;
        int rows = 0;
        folder.execute("delete from "_q + table);
        folder.take_log();
        step({root, none, database, none, cancelled, [&] { cancelled = ++rows == cancel_at; }}, sources);
        const QStringList log = folder.take_log();
        return {folder.dump(table).size(), log.filter(QRegularExpression("ENDS ?-{6}$"_q)).size()};
    }

private Q_SLOTS:
    void initTestCase() {
        QVERIFY(write_sample_source(folder.root()));
        front = folder.make_front();
        front->find_source_file();
    }

    void every_place_data() {
        QTest::addColumn<fill>("step");
        QTest::addColumn<QString>("table");
        QTest::addColumn<QStringList>("sources");
        QTest::addColumn<int>("ends_with_last_row"); // whether nothing is asked behind it
        const auto row = [](const char* name, const char* table, const fill& step, const QStringList& sources,
                            int ends) {
            QTest::newRow(name) << step << QString(QLatin1String(table)) << sources << ends;
        };
        const QStringList& core = front->found_cortana_core_db_files();
        const QStringList& webcache = front->found_webcache_files();
        const QStringList& hives = front->found_ntuser_files();
        // Behind the last row of some stand records or entries that give none.
        row("time reminders", "time_reminders", with_reader(fill_time_reminders), core, 1);
        row("place reminders", "place_reminders", with_reader(fill_place_reminders), core, 1);
        row("contact triggers", "contact_triggers", with_reader(fill_contact_triggers), core, 0);
        row("recordings", "latest_audio_search", fill_latest_audio_search, front->found_speech_dirs(), 1);
        row("graph cache", "graphed_cache", fill_graphed_cache, front->found_graph_dirs(), 0);
        row("cache files", "cache_files", with_reader(fill_cache_files), webcache, 0);
        row("cookies", "cookies", with_reader(fill_cookies), webcache, 0);
        row("DOM store", "domstore", with_reader(fill_domstore), webcache, 0);
        row("recent searches", "searches", with_reader(fill_searches_from_recents), hives, 1);
        row("searches in extensions", "searches", with_reader(fill_searches_from_com), hives, 0);
    }

    void every_place() {
        QFETCH(fill, step);
        QFETCH(QString, table);
        QFETCH(QStringList, sources);
        QFETCH(int, ends_with_last_row);
        const outcome whole = run(step, table, sources, -1);
        const outcome first = run(step, table, sources.mid(0, 1), -1);
        QVERIFY(first.rows > 1 && first.rows < whole.rows);
        QCOMPARE(whole.ends, 1);
        // Before the first source, in it, between two of them, with the last row.
        for (const int rows : {0, 1, first.rows, whole.rows}) {
            const outcome cancelled = run(step, table, sources, rows);
            QCOMPARE(cancelled.rows, rows);
            QCOMPARE(cancelled.ends, rows == whole.rows ? ends_with_last_row : 0);
        }
    }
};

QTEST_MAIN(test_cancel)
#include "test_cancel.moc"
