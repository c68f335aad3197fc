// SPDX-License-Identifier: MIT
// The result database's schema and life, through the plugin object.
#include "common/plugin_static_function.h"
#include "plugin/cortana.h"
#include "result_db/insert_session.h"
#include "tests/support/test_support.h"

#include <QDir>
#include <QFileInfo>
#include <QSqlQuery>
#include <QtTest>

class test_result_db : public QObject {
    Q_OBJECT

    static QString database_of(const QString& result) {
        return result + QStringLiteral("/Artifacts_Result/Cortana/Cortana.sqlite");
    }
    static QStringList tables(const QString& path) {
        return dump_table(path, QStringLiteral("sqlite_master"), {QStringLiteral("sql")});
    }

private Q_SLOTS:
    void schema_is_the_golden_one() {
        test_case_folder folder;
        cortana plugin;
        plugin.pub_set_result_directory(folder.result_dir()); // with a "/" at its end
        plugin.pub_create_db_tables();
        QStringList statements = tables(database_of(folder.result_dir().chopped(1)));
        QStringList golden = golden_lines(QStringLiteral(GOLDEN_DIR "/schema.txt"));
        // SQLite keeps what follows the table's name as it was written.
        golden.replaceInStrings(QRegularExpression(QStringLiteral("^(create table|CREATE TABLE) IF NOT EXISTS ")),
                                QStringLiteral("sql=text:CREATE TABLE "));
        QCOMPARE(statements.size(), 10);
        QCOMPARE(statements, golden);
    }

    void created_twice_keeps_rows() {
        test_case_folder folder;
        cortana plugin;
        plugin.pub_set_result_directory(folder.result_dir().chopped(1)); // without a "/" at its end
        plugin.pub_create_db_tables();
        const QString path = database_of(folder.result_dir().chopped(1));
        plugin_static_function::execute_db_command_by_dbpath(
            QStringLiteral("insert into cookies(bookmark,url) values(0,'u')"), path, QString());
        folder.take_log();
        plugin.pub_create_db_tables();
        QCOMPARE(dump_table(path, QStringLiteral("cookies"), {QStringLiteral("INT"), QStringLiteral("url")}),
                 QStringList(QStringLiteral("INT=integer:1 | url=text:u")));
        QVERIFY(matches_golden(folder.take_log(), QStringLiteral(GOLDEN_DIR "/create_log.txt")));
    }

    void a_failing_table_does_not_stop_the_others() {
        test_case_folder folder;
        cortana plugin;
        plugin.pub_set_result_directory(folder.result_dir());
        const QString path = database_of(folder.result_dir().chopped(1));
        for (const char* command : {"create table helper(a)", "create index cookies on helper(a)"}) {
            QVERIFY(plugin_static_function::execute_db_command_by_dbpath(QLatin1String(command), path, QString()));
        }
        folder.take_log();
        plugin.pub_create_db_tables();
        const QStringList log = folder.take_log();
        QCOMPARE(log.filter(QStringLiteral(" table creation -----FAILED---- ")),
                 QStringList(QStringLiteral("cortana::create_db_tables:--  table creation -----FAILED---- cookies")));
        QVERIFY(log.contains(QStringLiteral("cortana::create_db_tables:-- [create_db_tables] -ends-")));
        const QStringList created = plugin_static_function::get_total_tables_list_by_dbpath(path, QString());
        QCOMPARE(created.size(), 10); // nine and the helper
        QVERIFY(created.contains(QStringLiteral("domstore")) && !created.contains(QStringLiteral("cookies")));
    }

    // The disk fills before the commit: every statement succeeded, and no table is there.
    void a_failing_commit_is_told() {
        test_case_folder folder;
        cortana plugin;
        plugin.pub_set_result_directory(folder.result_dir());
        folder.take_log();
        {
            const full_disk full(8 * 1024);
            plugin.pub_create_db_tables();
        }
        const QStringList log = folder.take_log().filter(QStringLiteral("cortana::create_db_tables:-- "));
        QCOMPARE(log.size(), 2);
        QCOMPARE(log.first(), QStringLiteral("cortana::create_db_tables:-- [create_db_tables] -starts-"));
        QVERIFY2(log.last().endsWith(QStringLiteral("Unable to commit transaction")), qPrintable(log.last()));
        QCOMPARE(tables(database_of(folder.result_dir().chopped(1))), QStringList());
    }

    void unopenable() {
        test_case_folder folder;
        cortana plugin;
        plugin.pub_set_result_directory(folder.result_dir());
        QDir().mkpath(database_of(folder.result_dir().chopped(1))); // a folder in the file's place
        folder.take_log();
        plugin.pub_create_db_tables();
        QVERIFY(matches_golden(folder.take_log(), QStringLiteral(GOLDEN_DIR "/create_failed_log.txt")));
    }

    void clearing_data() {
        QTest::addColumn<int>("engine_type");
        QTest::addColumn<bool>("clear");
        QTest::addColumn<QStringList>("selected");
        QTest::addColumn<QString>("left"); // tables that keep their row
        QTest::addColumn<int>("failures");
        const QString cookies = QStringLiteral("cookies");
        const QString exported = QStringLiteral("exportfilelist");
        QTest::newRow("one") << 0 << true << QStringList(cookies) << "searches exportfilelist" << 0;
        QTest::newRow("false") << 0 << false << QStringList(cookies) << "cookies searches exportfilelist" << 0;
        QTest::newRow("engine 3") << 3 << true << QStringList(cookies) << "cookies searches exportfilelist" << 0;
        QTest::newRow("engine -1") << -1 << true << QStringList(cookies) << "cookies searches exportfilelist" << 0;
        QTest::newRow("unknown in between")
            << 2 << true << QStringList({cookies, QStringLiteral("nonsense"), exported}) << "searches" << 1;
        QTest::newRow("none") << 1 << true << QStringList() << "cookies searches exportfilelist" << 0;
    }
    void clearing() {
        QFETCH(int, engine_type);
        QFETCH(bool, clear);
        QFETCH(QStringList, selected);
        QFETCH(QString, left);
        QFETCH(int, failures);
        test_case_folder folder;
        cortana plugin;
        plugin.pub_set_engine_type(engine_type);
        plugin.pub_set_result_directory(folder.result_dir());
        plugin.pub_create_db_tables();
        const QString path = database_of(folder.result_dir().chopped(1));
        QStringList kept;
        const QString names[] = {QStringLiteral("cookies"), QStringLiteral("searches"),
                                 QStringLiteral("exportfilelist")};
        for (const QString& name : names) {
            plugin_static_function::execute_db_command_by_dbpath(
                QStringLiteral("insert into %1(INT) values(7)").arg(name), path, QString());
        }
        plugin.pub_set_essential_for_vantor_desk_extraction(selected, {});
        folder.take_log();
        plugin.pub_set_clear_db(clear);
        for (const QString& name : names) {
            if (!dump_table(path, name).isEmpty()) {
                kept << name;
            }
        }
        QCOMPARE(kept.join(QLatin1Char(' ')), left);
        const QStringList log = folder.take_log();
        QCOMPARE(log.filter(QStringLiteral("query  --------FAILED------")).size(), failures);
        QCOMPARE(log.filter(QStringLiteral("command -  delete from 'nonsense'")).size(), failures);
    }

    void clearing_a_missing_database() {
        test_case_folder folder;
        cortana plugin;
        plugin.pub_set_engine_type(0);
        plugin.pub_set_result_directory(folder.result_dir());
        folder.take_log();
        plugin.pub_set_clear_db(true);
        QCOMPARE(folder.take_log(),
                 QStringList(QStringLiteral("cortana::clear_db_tables:-- [clear_db_tables]DB not exists "
                                            "and so returning...")));
        QVERIFY(!QFileInfo::exists(database_of(folder.result_dir().chopped(1))));
    }

    void insert_session_binds_types_and_commits_on_the_way_out() {
        test_case_folder folder;
        const QString statement = QStringLiteral("insert into searches(bookmark,search_keyword,search_timestamp,notes) "
                                                 "values(0,?,?,?)");
        const QString name = QStringLiteral("void test()");
        {
            insert_session session(folder.database_path(), name);
            QVERIFY(session.is_open());
            QVERIFY(session.insert(statement, {QStringLiteral(""), QStringLiteral("1e3"), QString()}));
            QVERIFY(session.insert(statement, {QStringLiteral("a'b"), qint64(-5), QStringLiteral("12x")}));
            QVERIFY(!session.insert(QStringLiteral("insert into nowhere values(?)"), {1}));
            QVERIFY(session.error_text().contains(QLatin1String("no such table")));
        }
        QVERIFY(!QSqlDatabase::contains(name));
        QCOMPARE(
            folder.dump(QStringLiteral("searches"), {QStringLiteral("search_keyword"),
                                                     QStringLiteral("search_timestamp"), QStringLiteral("notes")}),
            QStringList({QStringLiteral("search_keyword=text: | search_timestamp=integer:1000 | notes=null:"),
                         QStringLiteral("search_keyword=text:a'b | search_timestamp=integer:-5 | notes=text:12x")}));
        insert_session closed(QStringLiteral("/no/such/folder/x.sqlite"), name);
        QVERIFY(!closed.is_open());
        QVERIFY(!closed.error_text().isEmpty());
    }
};

QTEST_MAIN(test_result_db)
#include "test_result_db.moc"
