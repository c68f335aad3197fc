// SPDX-License-Identifier: MIT
// A host that outlives the plugin: after the library is unmapped, whatever Qt still keeps of it is read once more here
// and by the application's end. Nothing of the plugin is linked, so a text or object of its own can only be unmapped.
#include "contract/table_names.h"
#include "samples/sample_source.h"
#include "tests/plugin/loaded_plugin.h"

#include <QSqlDatabase>
#include <QtTest>

#include <dlfcn.h>

class test_plugin_unloading : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void host_goes_on_data() {
        QTest::addColumn<bool>("can_write");
        QTest::addColumn<bool>("encipher");
        QTest::newRow("whole run") << true << false;
        QTest::newRow("enciphered log") << true << true;
        QTest::newRow("database cannot be opened") << false << false;
    }
    void host_goes_on() {
        QFETCH(bool, can_write);
        QFETCH(bool, encipher);
        const QTemporaryDir folder;
        run_settings run{
            folder.path() + "/source/"_q, folder.path() + "/result"_q, result_table_names(), {"anna"_q, "bernd"_q}};
        run.encipher = encipher;
        QVERIFY(write_sample_source(run.root));
        QVERIFY(can_write || QDir().mkpath(run.database())); // a folder in its place
        loaded_plugin plugin;
        plugin.set_up(run);
        plugin->pub_set_clear_db(true);
        plugin.extract();
        QVERIFY(!run.log_lines().isEmpty());
        const QStringList told{plugin->pub_get_artifact_name(), plugin->objectName(), plugin->windowTitle()};
        QVERIFY(plugin.unload());
        QVERIFY(::dlopen(PLUGIN_LIBRARY, RTLD_LAZY | RTLD_NOLOAD) == nullptr); // really unmapped
        QCoreApplication::sendPostedEvents();
        QCoreApplication::processEvents();
        // Clearing leaves its connection behind, closed.
        const QStringList kept = QSqlDatabase::connectionNames();
        QCOMPARE(kept, QStringList("static bool plugin_static_function::execute_db_command_by_dbpath"
                                   "(QString, QString, QString)void cortana::clear_db_tables()"_q));
        const QSqlDatabase database = QSqlDatabase::database(kept.first(), false);
        QCOMPARE(database.driverName(), "QSQLITE"_q);
        QCOMPARE(database.databaseName(), run.database());
        QVERIFY(!database.isOpen());
        QCOMPARE(told, QStringList({"Cortana"_q, "cortana"_q, "Frame"_q})); // texts that a host may keep
    }
};

QTEST_MAIN(test_plugin_unloading)
#include "test_plugin_unloading.moc"
