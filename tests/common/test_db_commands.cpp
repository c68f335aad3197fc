// SPDX-License-Identifier: MIT
// SQL commands on real SQLite files, with the exact lines of every failure.
#include "common/plugin_static_function.h"
#include "tests/support/test_support.h"

#include <QSqlError>
#include <QSqlQuery>
#include <QtTest>

using shared = plugin_static_function;

class test_db_commands : public QObject {
    Q_OBJECT

    test_case_folder folder;
    QSqlDatabase database;
    const QString caller = QStringLiteral("void caller()");

    QString missing() const { return folder.result_dir() + QStringLiteral("no/such.sqlite"); }
    QStringList log() { return folder.take_log(); }

private Q_SLOTS:
    void initTestCase() {
        database = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), QStringLiteral("the connection"));
        database.setDatabaseName(folder.database_path());
        QVERIFY(database.open());
        QSqlQuery(database).exec(QStringLiteral("create table pairs(a text, b text)"));
    }
    void cleanupTestCase() {
        database.close();
        database = QSqlDatabase();
        QSqlDatabase::removeDatabase(QStringLiteral("the connection"));
    }
    void init() {
        QSqlQuery(database).exec(QStringLiteral("delete from pairs"));
        QSqlQuery(database).exec(QStringLiteral("insert into pairs values('1','one'),('2','two'),('2',null)"));
        log();
    }

    void commands_change_rows() {
        const QString insert = QStringLiteral("insert into pairs values('3','three')");
        const QString bound = QStringLiteral("insert into pairs values(?,?)");
        QVERIFY(shared::execute_db_command_by_dbpath(insert, folder.database_path(), caller));
        QVERIFY(shared::execute_db_command_with_addbindvalue_by_dbpath(
            bound, {QStringLiteral("4"), QStringLiteral("it's")}, folder.database_path(), caller));
        QVERIFY(shared::execute_db_command_by_dbreference(insert, database, caller));
        QVERIFY(shared::execute_db_command_with_addbindvalue_by_dbreference(
            bound, {QStringLiteral("5"), QStringLiteral("five")}, database, caller));
        QVERIFY(database.isOpen());
        QCOMPARE(log(), QStringList());
        QCOMPARE(folder.dump(QStringLiteral("pairs")).mid(3),
                 QStringList({QStringLiteral("a=text:3 | b=text:three"), QStringLiteral("a=text:4 | b=text:it's"),
                              QStringLiteral("a=text:3 | b=text:three"), QStringLiteral("a=text:5 | b=text:five")}));
    }

    void failing_commands() {
        const QString bad = QStringLiteral("nonsense");
        const QString error = QStringLiteral("near \"nonsense\": syntax error Unable to execute statement");
        const QString path = QStringLiteral("RESULT/Cortana.sqlite");
        QVERIFY(!shared::execute_db_command_by_dbpath(bad, folder.database_path(), caller));
        QString prefix = QStringLiteral("plugin_static_function::execute_db_command_by_dbpath:--  ");
        QCOMPARE(log(), QStringList({prefix + QStringLiteral("query  --------FAILED------ db file - ") + path,
                                     prefix.left(prefix.size() - 1) + QStringLiteral("CALLER FUNCTION -  ") + caller,
                                     prefix + QStringLiteral("command -  ") + bad,
                                     prefix + QStringLiteral("error -  ") + error}));
        QVERIFY(!shared::execute_db_command_with_addbindvalue_by_dbreference(bad, {}, database, caller));
        prefix = QStringLiteral("plugin_static_function::execute_db_command_with_addbindvalue_by_dbreference:--  ");
        QCOMPARE(log(), QStringList({prefix + QStringLiteral("query  --------FAILED------ db file - ") + path,
                                     prefix + QStringLiteral("CALLER FUNCTION -  -  ") + caller,
                                     prefix + QStringLiteral("command -  ") + bad,
                                     prefix + QStringLiteral("error -  ") + error}));
    }

    void missing_file() {
        QVERIFY(
            !shared::execute_db_command_with_addbindvalue_by_dbpath(QStringLiteral("select 1"), {}, missing(), caller));
        const QString prefix =
            QStringLiteral("plugin_static_function::execute_db_command_with_addbindvalue_by_dbpath:-- ");
        const QString opening = QStringLiteral(" Destination Db opening --------FAILED------ RESULT/no/such.sqlite");
        const QString error = QStringLiteral(" error -  unable to open database file Error opening database");
        QCOMPARE(log(), QStringList({prefix + opening, prefix + QStringLiteral("CALLER FUNCTION -  ") + caller,
                                     prefix + error}));
        QCOMPARE(shared::get_total_tables_list_by_dbpath(missing(), caller), QStringList());
        const QString tables = QStringLiteral("plugin_static_function::get_total_tables_list_by_dbpath:-- ");
        QCOMPARE(log(), QStringList({tables + opening, tables + QStringLiteral("CALLER FUNCTION -  ") + caller,
                                     tables + error}));
        QCOMPARE(shared::get_stringlist_from_db_by_dbpath(QStringLiteral("select 1"), 0, missing(), caller),
                 QStringList());
        const QString list = QStringLiteral("plugin_static_function::get_stringlist_from_db_by_dbpath:-- ");
        QCOMPARE(log(), QStringList({list + QStringLiteral(" Start "),
                                     list + QStringLiteral("Destination Db opening --------FAILED------ ") +
                                         QStringLiteral("RESULT/no/such.sqlite")}));
        QVERIFY(!QFile::exists(missing()));
    }

    void lists() {
        const QString all = QStringLiteral("select * from pairs");
        const QString some = QStringLiteral("select * from pairs where a = ?");
        const QStringList two = {QStringLiteral("2")};
        QCOMPARE(shared::get_stringlist_from_db_by_dbreference(all, 1, database, caller),
                 QStringList({QStringLiteral("one"), QStringLiteral("two"), QString()}));
        QCOMPARE(shared::get_stringlist_from_db_with_addbindvalues_by_dbreference(some, two, 0, database, caller),
                 QStringList({QStringLiteral("2"), QStringLiteral("2")}));
        QCOMPARE(shared::get_stringlist_from_db_by_dbpath(all, 0, folder.database_path(), caller).size(), 3);
        QCOMPARE(shared::get_stringlist_from_db_with_addbindvalues_by_dbpath(some, {QStringLiteral("none")}, 0,
                                                                             folder.database_path(), caller),
                 QStringList());
        const QString prefix = QStringLiteral("plugin_static_function::get_stringlist_from_db_");
        QStringList expected;
        for (const char* line :
             {"by_dbreference:--  Start ", "by_dbreference:--  end ", "with_addbindvalues_by_dbreference:--  Start ",
              "with_addbindvalues_by_dbreference:--  end ", "by_dbpath:--  Start ", "by_dbpath:--  end ",
              "with_addbindvalues_by_dbpath:--  Start ", "with_addbindvalues_by_dbpath:--  End "}) {
            expected << prefix + QLatin1String(line);
        }
        QCOMPARE(log(), expected);
    }

    void failing_lists() {
        const QString bad = QStringLiteral("select * from nowhere");
        QCOMPARE(shared::get_stringlist_from_db_by_dbreference(bad, 0, database, caller), QStringList());
        const QString error = QStringLiteral("no such table: nowhere Unable to execute statement");
        QString prefix = QStringLiteral("plugin_static_function::get_stringlist_from_db_by_dbreference:--  ");
        QCOMPARE(
            log(),
            QStringList({prefix + QStringLiteral("Start "),
                         prefix + QStringLiteral("query  --------FAILED------db file - RESULT/Cortana.sqlite"),
                         prefix + QStringLiteral("CALLER FUNCTION -  -  ") + caller,
                         prefix + QStringLiteral("command -  ") + bad, prefix + QStringLiteral("error -  ") + error}));
        QCOMPARE(
            shared::get_stringlist_from_db_with_addbindvalues_by_dbpath(bad, {}, 0, folder.database_path(), caller),
            QStringList());
        prefix = QStringLiteral("plugin_static_function::get_stringlist_from_db_with_addbindvalues_by_dbpath:-- ");
        QCOMPARE(
            log(),
            QStringList({prefix + QStringLiteral(" Start "),
                         prefix + QStringLiteral("query  --------FAILED------db file - RESULT/Cortana.sqlite"),
                         prefix + QStringLiteral("CALLER FUNCTION -  ") + caller,
                         prefix + QStringLiteral("command -  ") + bad, prefix + QStringLiteral("error -  ") + error}));
    }

    void value_existence() {
        const QString all = QStringLiteral("select b from pairs");
        QVERIFY(shared::check_value_existence_in_db_by_dbreference(all, 0, QStringLiteral("two"), database));
        QVERIFY(!shared::check_value_existence_in_db_by_dbreference(all, 0, QStringLiteral("Two"), database));
        QCOMPARE(log(), QStringList());
        QVERIFY(
            !shared::check_value_existence_in_db_by_dbreference(QStringLiteral("nonsense"), 0, QString(), database));
        const QString prefix = QStringLiteral("plugin_static_function::check_value_existence_in_db_by_dbreference:-- "
                                              "[check_value_existence_in_db_by_dbpath]");
        QCOMPARE(log(), QStringList({prefix + QStringLiteral(" query --------FAILED------the connection"),
                                     prefix + QStringLiteral("commandnonsense"),
                                     prefix + QStringLiteral(" errornear \"nonsense\": syntax error Unable to execute "
                                                             "statement")}));
    }

    void tables_are_the_user_tables() {
        QSqlQuery(database).exec(QStringLiteral("create view looked_at as select 1"));
        const QStringList tables = shared::get_total_tables_list_by_dbpath(folder.database_path(), caller);
        QVERIFY(tables.contains(QStringLiteral("pairs")) && tables.contains(QStringLiteral("exportfilelist")));
        QVERIFY(!tables.contains(QStringLiteral("looked_at")));
        QCOMPARE(tables.size(), 11);
    }

    void connection_names_carry_the_caller() {
        const QString name = QStringLiteral("static bool plugin_static_function::execute_db_command_by_dbpath"
                                            "(QString, QString, QString)void caller()");
        QVERIFY(shared::execute_db_command_by_dbpath(QStringLiteral("select 1"), folder.database_path(), caller));
        QVERIFY(QSqlDatabase::contains(name));
        QVERIFY(!QSqlDatabase::database(name, false).isOpen());
    }
};

QTEST_GUILESS_MAIN(test_db_commands)
#include "test_db_commands.moc"
