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

    std::unique_ptr<test_case_folder> folder;
    std::unique_ptr<cortana> plugin;
    QString path() const { return folder->result_dir() + "Artifacts_Result/Cortana/Cortana.sqlite"_q; }
    QStringList tables() const { return dump_table(path(), "sqlite_master"_q, {"sql"_q}); }
    void execute(const QString& statement) const {
        QVERIFY(plugin_static_function::execute_db_command_by_dbpath(statement, path(), QString()));
    }

private Q_SLOTS:
    // A fresh plugin object that knows its result folder, whose path ends in "/".
    void init() {
        plugin.reset();
        folder.reset(); // its end closes the log, so it must come before the next one
        folder = std::make_unique<test_case_folder>();
        plugin = std::make_unique<cortana>();
        plugin->pub_set_result_directory(folder->result_dir());
        folder->take_log();
    }

    void schema_is_the_golden_one() {
        plugin->pub_create_db_tables();
        QStringList golden = golden_lines(GOLDEN_DIR "/schema.txt"_q);
        // SQLite keeps what follows the table's name as it was written.
        golden.replaceInStrings(QRegularExpression("^(create table|CREATE TABLE) IF NOT EXISTS "_q),
                                "sql=text:CREATE TABLE "_q);
        QCOMPARE(tables(), golden);
    }

    void a_failing_table_does_not_stop_the_others() {
        execute("create table helper(a)"_q);
        execute("create index cookies on helper(a)"_q);
        folder->take_log();
        plugin->pub_create_db_tables();
        const QStringList log = folder->take_log();
        QCOMPARE(log.filter(" table creation -----FAILED---- "_q),
                 QStringList("cortana::create_db_tables:--  table creation -----FAILED---- cookies"_q));
        QVERIFY(log.contains("cortana::create_db_tables:-- [create_db_tables] -ends-"_q));
        const QStringList created = plugin_static_function::get_total_tables_list_by_dbpath(path(), QString());
        QCOMPARE(created.size(), 10); // nine and the helper
        QVERIFY(created.contains("domstore"_q) && !created.contains("cookies"_q));
    }

    // The disk fills before the commit: every statement succeeded, and no table is there.
    void a_failing_commit_is_told() {
        {
            const full_disk full(8 * 1024);
            plugin->pub_create_db_tables();
        }
        const QStringList log = folder->take_log().filter("cortana::create_db_tables:-- "_q);
        QCOMPARE(log.size(), 2);
        QCOMPARE(log.first(), "cortana::create_db_tables:-- [create_db_tables] -starts-"_q);
        QVERIFY2(log.last().endsWith("Unable to commit transaction"_q), qPrintable(log.last()));
        QCOMPARE(tables(), QStringList());
    }

    void unopenable() {
        QDir().mkpath(path()); // a folder in the file's place
        plugin->pub_create_db_tables();
        QVERIFY(matches_golden(folder->take_log(), GOLDEN_DIR "/create_failed_log.txt"_q));
    }

    void clearing_data() {
        QTest::addColumn<int>("engine_type");
        QTest::addColumn<bool>("clear");
        QTest::addColumn<QStringList>("selected");
        QTest::addColumn<QString>("left"); // tables that keep their row
        QTest::addColumn<int>("failures");
        const QString cookies = "cookies"_q;
        QTest::newRow("one") << 0 << true << QStringList(cookies) << "searches exportfilelist" << 0;
        QTest::newRow("false") << 0 << false << QStringList(cookies) << "cookies searches exportfilelist" << 0;
        QTest::newRow("engine 3") << 3 << true << QStringList(cookies) << "cookies searches exportfilelist" << 0;
        QTest::newRow("engine -1") << -1 << true << QStringList(cookies) << "cookies searches exportfilelist" << 0;
        QTest::newRow("unknown in between")
            << 2 << true << QStringList({cookies, "nonsense"_q, "exportfilelist"_q}) << "searches" << 1;
        QTest::newRow("none") << 1 << true << QStringList() << "cookies searches exportfilelist" << 0;
    }
    void clearing() {
        QFETCH(int, engine_type);
        QFETCH(bool, clear);
        QFETCH(QStringList, selected);
        QFETCH(int, failures);
        plugin->pub_set_engine_type(engine_type);
        plugin->pub_create_db_tables();
        const QString names[] = {"cookies"_q, "searches"_q, "exportfilelist"_q};
        for (const QString& name : names) {
            execute("insert into %1(INT) values(7)"_q.arg(name));
        }
        plugin->pub_set_essential_for_vantor_desk_extraction(selected, {});
        folder->take_log();
        plugin->pub_set_clear_db(clear);
        QStringList kept;
        for (const QString& name : names) {
            kept += dump_table(path(), name).isEmpty() ? QStringList() : QStringList(name);
        }
        QTEST(kept.join(QLatin1Char(' ')), "left");
        const QStringList log = folder->take_log();
        QCOMPARE(log.filter("query  --------FAILED------"_q).size(), failures);
        QCOMPARE(log.filter("command -  delete from 'nonsense'"_q).size(), failures);
    }

    void clearing_a_missing_database() {
        plugin->pub_set_engine_type(0);
        folder->take_log();
        plugin->pub_set_clear_db(true);
        QCOMPARE(folder->take_log(), QStringList("cortana::clear_db_tables:-- [clear_db_tables]DB not exists "
                                                 "and so returning..."_q));
        QVERIFY(!QFileInfo::exists(path()));
    }

    void insert_session_binds_types_and_commits_on_the_way_out() {
        const QString statement = "insert into searches(bookmark,search_keyword,search_timestamp,notes) "
                                  "values(0,?,?,?)"_q;
        const QString name = "void test()"_q;
        {
            insert_session session(folder->database_path(), name);
            QVERIFY(session.is_open());
            QVERIFY(session.insert(statement, {""_q, "1e3"_q, QString()}));
            QVERIFY(session.insert(statement, {"a'b"_q, qint64(-5), "12x"_q}));
            QVERIFY(!session.insert("insert into nowhere values(?)"_q, {1}));
            QVERIFY(session.error_text().contains(QLatin1String("no such table")));
        }
        QVERIFY(!QSqlDatabase::contains(name));
        QCOMPARE(folder->dump("searches"_q, {"search_keyword"_q, "search_timestamp"_q, "notes"_q}),
                 QStringList({"search_keyword=text: | search_timestamp=integer:1000 | notes=null:"_q,
                              "search_keyword=text:a'b | search_timestamp=integer:-5 | notes=text:12x"_q}));
    }

    // A statement is prepared again only when it must be: what fails, and how it is told, must not depend on whether it
    // is the first row.
    void insert_session_tells_of_every_failure_alike() {
        const QString statement = "insert into searches(search_keyword,notes) values(?,?)"_q;
        const QString executed = "insert into searches(search_keyword,notes) values(:a,:bb)"_q;
        insert_session session(folder->database_path(), "void test()"_q);
        const auto failure = [&session](const QVector<QVariant>& values, const QString& of_statement) {
            return session.insert(of_statement, values)
                       ? QString()
                       : session.error_text() + QLatin1Char('\n') + session.executed_query();
        };
        const QString miscounted = "Parameter count mismatch\n"_q + executed;
        QCOMPARE(failure({1}, statement), miscounted);
        QCOMPARE(failure({"first"_q, 1}, statement), QString());
        QCOMPARE(failure({}, statement), miscounted);
        QCOMPARE(failure({1, 2, 3}, statement), miscounted);
        QCOMPARE(failure({"second"_q, QVariant()}, statement), QString());
        QCOMPARE(failure({7}, "insert into searches(INT) values(?)"_q), QString());
        QCOMPARE(failure({}, "alter table searches rename to elsewhere"_q), QString());
        const QString gone = "no such table: searches Unable to execute statement\n"_q + executed;
        QCOMPARE(failure({"third"_q, 3}, statement), gone);
        QCOMPARE(failure({"third"_q, 3}, statement), gone);
        QCOMPARE(failure({}, "alter table elsewhere rename to searches"_q), QString());
        QCOMPARE(failure({"fourth"_q, 4}, statement), QString());
        QVERIFY(session.commit());
        QCOMPARE(
            folder->dump("searches"_q, {"search_keyword"_q, "notes"_q}),
            QStringList({"search_keyword=text:first | notes=text:1"_q, "search_keyword=text:second | notes=null:"_q,
                         "search_keyword=null: | notes=null:"_q, "search_keyword=text:fourth | notes=text:4"_q}));
    }

    void insert_session_does_not_open() {
        insert_session closed("/no/such/folder/x.sqlite"_q, "void test()"_q);
        QVERIFY(!closed.is_open());
        QVERIFY(!closed.error_text().isEmpty());
    }
};

QTEST_MAIN(test_result_db)
#include "test_result_db.moc"
