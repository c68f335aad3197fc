// SPDX-License-Identifier: MIT
// SQL commands on real SQLite files, with the exact lines of every failure.
#include "common/named_connection.h"
#include "common/plugin_static_function.h"
#include "tests/support/test_support.h"

#include <QtTest>

using shared = plugin_static_function;

class test_db_commands : public QObject {
    Q_OBJECT

    test_case_folder folder;
    const QString path = folder.database_path();
    QSqlDatabase database = QSqlDatabase::addDatabase("QSQLITE"_q, "the connection"_q);
    const QString caller = "void caller()"_q;

private Q_SLOTS:
    void initTestCase() {
        database.setDatabaseName(path);
        QVERIFY(database.open());
        folder.execute("create table pairs(a text, b text)"_q);
        folder.execute("insert into pairs values('1','one'),('2','two'),('2',null)"_q);
        folder.execute("create table changed(a text, b text)"_q);
        folder.execute("create view looked_at as select 1"_q);
    }
    void init() { folder.take_log(); }

    // The characters of a literal go with the library that it stands in; what Qt keeps registered must not.
    void registered_texts_are_copies() {
        const QString name = QStringLiteral("named by a literal");
        const QString file = QStringLiteral(":memory:");
        {
            const QSqlDatabase kept = replace_connection(name, file);
            QCOMPARE(kept.connectionName(), name);
            QVERIFY(kept.connectionName().constData() != name.constData());
            QCOMPARE(kept.databaseName(), file);
            QVERIFY(kept.databaseName().constData() != file.constData());
        }
        QSqlDatabase::removeDatabase(name);
    }

    void commands_change_rows() {
        const QString insert = "insert into changed values('3','three')"_q;
        const QString bound = "insert into changed values(?,?)"_q;
        QVERIFY(shared::execute_db_command_by_dbpath(insert, path, caller));
        QVERIFY(shared::execute_db_command_with_addbindvalue_by_dbpath(bound, {"4"_q, "it's"_q}, path, caller));
        QVERIFY(shared::execute_db_command_by_dbreference(insert, database, caller));
        QVERIFY(
            shared::execute_db_command_with_addbindvalue_by_dbreference(bound, {"5"_q, "five"_q}, database, caller));
        QCOMPARE(folder.take_log(), QStringList());
        QVERIFY(database.isOpen());
        // The connection that was opened by path is named by the function and its caller.
        const QString name = "static bool plugin_static_function::execute_db_command_by_dbpath"
                             "(QString, QString, QString)void caller()"_q;
        QVERIFY(QSqlDatabase::contains(name));
        QVERIFY(!QSqlDatabase::database(name, false).isOpen());
        QCOMPARE(folder.dump("changed"_q), QStringList({"a=text:3 | b=text:three"_q, "a=text:4 | b=text:it's"_q,
                                                        "a=text:3 | b=text:three"_q, "a=text:5 | b=text:five"_q}));
    }

    void lists() {
        const QString all = "select * from pairs"_q;
        const QString some = "select * from pairs where a = ?"_q;
        QCOMPARE(shared::get_stringlist_from_db_by_dbreference(all, 1, database, caller),
                 QStringList({"one"_q, "two"_q, QString()}));
        QCOMPARE(shared::get_stringlist_from_db_with_addbindvalues_by_dbreference(some, {"2"_q}, 0, database, caller),
                 QStringList({"2"_q, "2"_q}));
        QCOMPARE(shared::get_stringlist_from_db_by_dbpath(all, 0, path, caller).size(), 3);
        QCOMPARE(shared::get_stringlist_from_db_with_addbindvalues_by_dbpath(some, {"none"_q}, 0, path, caller),
                 QStringList());
        QVERIFY(shared::check_value_existence_in_db_by_dbreference(all, 1, "two"_q, database));
        QVERIFY(!shared::check_value_existence_in_db_by_dbreference(all, 1, "Two"_q, database));
        QCOMPARE(shared::get_total_tables_list_by_dbpath(path, caller).size(), 12); // no view
        QVERIFY(matches_golden(folder.take_log(), GOLDEN_DIR "/lists_log.txt"_q));
    }

    void failures() {
        const QString bad = "nonsense"_q;
        const QString nowhere = "select * from nowhere"_q;
        const QString missing = folder.result_dir() + "no/such.sqlite"_q;
        QVERIFY(!shared::execute_db_command_by_dbpath(bad, path, caller));
        QVERIFY(!shared::execute_db_command_with_addbindvalue_by_dbreference(bad, {}, database, caller));
        QVERIFY(!shared::execute_db_command_with_addbindvalue_by_dbpath("select 1"_q, {}, missing, caller));
        QCOMPARE(shared::get_total_tables_list_by_dbpath(missing, caller), QStringList());
        QCOMPARE(shared::get_stringlist_from_db_by_dbpath("select 1"_q, 0, missing, caller), QStringList());
        QVERIFY(!QFile::exists(missing));
        QCOMPARE(shared::get_stringlist_from_db_by_dbreference(nowhere, 0, database, caller), QStringList());
        QCOMPARE(shared::get_stringlist_from_db_with_addbindvalues_by_dbpath(nowhere, {}, 0, path, caller),
                 QStringList());
        QVERIFY(!shared::check_value_existence_in_db_by_dbreference(bad, 0, QString(), database));
        QVERIFY(matches_golden(folder.take_log(), GOLDEN_DIR "/failures_log.txt"_q));
    }
};

QTEST_GUILESS_MAIN(test_db_commands)
#include "test_db_commands.moc"
