// SPDX-License-Identifier: MIT
// The three reminder steps on real files: rows with their stored types, log lines, several profiles, bad files.
#include "evidence/ese_damage.h"
#include "tests/extractors/core_files.h"

#include <QtTest>

namespace {

const QString anna = QStringLiteral("anna");
// One reminder of each kind, with one key each.
core_content one_of_each_kind() {
    core_content content;
    content.triggers = {trigger("p", 1), trigger("t", 2), trigger("c", 3), trigger("x", 12), trigger("t", 0)};
    content.reminders = {reminder("Milch & Brötchen 🥨", nullptr)};
    content.times = {time_row("t", may_first + 60)};
    content.places = {{"p", 47.6, -122.3, 100.5, 0, "Käse-Markt"}};
    content.contacts = {{"c", "rule", 1, 0, "aggregate", "tel:1", nullptr, ""}};
    return content;
}

using extractor = void (cortana_winos::*)();

struct step_case {
    const char* table;
    extractor extract;
    const char* function;
    const char* started;
    const char* ended;
    const char* opening_failed;
    const char* insert_failed;
    const char* statement; // as Qt's driver executes it, with names for the question marks
};

const step_case steps[] = {
    {"time_reminders", &cortana_winos::extract_timetriggers, "cortana_winos::extract_timetriggers:-- ",
     "[extract_timetriggers] ----- STARTS ------", "[extract_timetriggers] ----- ENDS ------",
     "[extract_timetriggers]Destination Db opening ---FAILED--- ", "--------INSERTION Query ----FAILED------ ",
     "INSERT INTO time_reminders(bookmark,system_user,domain_user,title,text,creation_time,last_update_time,"
     "last_access_time,completion_time,date_time,last_trigger_time,source_file, os_scheme_display,source_count_name) "
     "VALUES(0,:a,:bb,:bc,:bd,:be,:bf,:bg,:bh,:bi,:bj,:bk,:bl,:bm)"},
    {"place_reminders", &cortana_winos::extract_place_reminders, "cortana_winos::extract_place_reminders:-- ",
     "[extract_place_reminders] ----- Starts ------", "[extract_place_reminders] ----- ENDS ------",
     "[extract_place_reminders]Destination Db opening ---FAILED--- ", " --------INSERTION Query ----FAILED------",
     "INSERT INTO place_reminders(bookmark,system_user,domain_user,title,text,place,latitude,longitude,map_url,radius,"
     "creation_time,last_update_time,last_access_time,completion_time,start_date_time,source_file,os_scheme_display,"
     "source_count_name) VALUES(0,:a,:bb,:bc,:bd,:be,:bf,:bg,:bh,:bi,:bj,:bk,:bl,:bm,:bn,:bo,:bp,:cba)"},
    {"contact_triggers", &cortana_winos::extract_contact_triggers, "cortana_winos::extract_contact_triggers:-- ",
     "[extract_contact_triggers] ----- STARTS ------", "[extract_contact_triggers] ----- ENDS ------",
     "[extract_contact_triggers]Destination Db opening ---FAILED--- ", "--------INSERTION Query ----FAILED------",
     "INSERT INTO contact_triggers(bookmark,system_user,domain_user,contact_name,title,text,creation_time,"
     "last_update_time,last_access_time,completion_time,source_file,os_scheme_display,source_count_name) "
     "VALUES(0,:a,:bb,:bc,:bd,:be,:bf,:bg,:bh,:bi,:bj,:bk,:bl)"},
};

void add_steps() {
    QTest::addColumn<int>("step");
    int number = 0;
    for (const step_case& step : steps) {
        QTest::newRow(step.table) << number++;
    }
}

QString line(const step_case& step, const char* message, const QString& rest = QString()) {
    return QLatin1String(step.function) + QLatin1String(message) + rest;
}

} // namespace

class test_reminders : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void rows_of_each_kind_data();
    void rows_of_each_kind();
    void log_lines_data() { add_steps(); }
    void log_lines();
    void earlier_profiles_are_written_again();
    void bad_file_leaves_the_other_profile_whole_data();
    void bad_file_leaves_the_other_profile_whole();
    void coordinates_that_are_no_numbers();
};

void test_reminders::rows_of_each_kind_data() {
    QTest::addColumn<int>("step");
    QTest::addColumn<QString>("row");
    const QString head = QStringLiteral("bookmark=integer:0 | INT=integer:1 | system_user=text:anna | "
                                        "domain_user=text:CORP\\anna | ");
    const QString reminder_part = QStringLiteral("title=text:Milch & Brötchen 🥨 | text=text:text | ");
    const QString times = QStringLiteral("creation_time=integer:1556704800 | last_update_time=integer:1556704801 | "
                                         "last_access_time=integer:1556704802 | completion_time=integer:0 | ");
    const QString tail =
        QStringLiteral("vantor_tag_value=null: | notes_icon=null: | tags_icon=null: | os_scheme_display=text:Windows | "
                       "source_count_name=text:Source1 | "
                       "source_file=text:/Users/anna/AppData/Local/Packages/Microsoft.Windows.Cortana_cw5n1h2txyewy/"
                       "LocalState/ESEDatabase_CortanaCoreInstance/CortanaCoreDb.dat | "
                       "artifacts_relation_source_file=null: | notes=null:");
    const QString time_part = QStringLiteral("date_time=integer:1556704860 | last_trigger_time=integer:1556704800 | ");
    const QString place_part = QStringLiteral("latitude=text:47.6 | longitude=text:-122.3 | "
                                              "map_url=text:https://www.google.com/maps?q=47.6,-122.3 | "
                                              "radius=text:100.5 | ");
    QTest::newRow("time") << 0 << head + reminder_part + times + time_part + tail;
    QTest::newRow("place") << 1
                           << head + QStringLiteral("place=text:Käse-Markt | ") + reminder_part + place_part + times +
                                  QStringLiteral("start_date_time=integer:0 | ") + tail;
    QTest::newRow("contact") << 2 << head + QStringLiteral("contact_name=text: | ") + reminder_part + times + tail;
}

void test_reminders::rows_of_each_kind() {
    QFETCH(int, step);
    QFETCH(QString, row);
    const test_case_folder test_case;
    write_core(core_path(test_case, anna), one_of_each_kind());
    const auto front = test_case.make_front();
    front->find_source_file();
    (front.get()->*steps[step].extract)();
    QCOMPARE(test_case.dump(QLatin1String(steps[step].table)), QStringList(row));
}

void test_reminders::log_lines() {
    QFETCH(int, step);
    const step_case& tested = steps[step];
    test_case_folder test_case;
    const auto front = test_case.make_front();
    const auto log_of_step = [&] {
        front->find_source_file();
        test_case.take_log();
        (front.get()->*tested.extract)();
        return test_case.take_log();
    };
    const QStringList good = {line(tested, tested.started), line(tested, tested.ended)};
    QCOMPARE(log_of_step(), good); // no source

    core_content other_kinds = one_of_each_kind();
    other_kinds.triggers = {trigger("p", 4), trigger("t", 4), trigger("c", 4)};
    write_core(core_path(test_case, anna), other_kinds);
    QCOMPARE(log_of_step(), good);
    QCOMPARE(test_case.dump(QLatin1String(tested.table)), QStringList());

    write_core(core_path(test_case, anna), one_of_each_kind());
    QCOMPARE(log_of_step(), good);

    const QString table = QLatin1String(tested.table);
    test_case.execute(QStringLiteral("drop table %1").arg(table));
    QCOMPARE(
        log_of_step(),
        QStringList({good.at(0), line(tested, tested.insert_failed, QStringLiteral("RESULT/Cortana.sqlite")),
                     line(tested, "Error :- no such table: ", table + QLatin1String(" Unable to execute statement")),
                     line(tested, "Query :- ", QLatin1String(tested.statement)), good.at(1)}));

    front->winos_set_destination_location(test_case.result_dir(), QString(), test_case.result_dir());
    QCOMPARE(log_of_step(), QStringList({good.at(0), line(tested, tested.opening_failed, QStringLiteral("RESULT/")),
                                         line(tested, "unable to open database file Error opening database")}));
}

void test_reminders::earlier_profiles_are_written_again() {
    const QString bernd = QStringLiteral("bernd");
    const test_case_folder test_case({{anna, anna}, {bernd, bernd}});
    core_content second = one_of_each_kind();
    second.reminders = {reminder("Bernds")};
    write_core(core_path(test_case, anna), one_of_each_kind());
    write_core(core_path(test_case, bernd), second);
    const auto front = test_case.make_front();
    front->find_source_file();
    front->extract_contact_triggers();
    const QStringList rows =
        test_case.dump(QStringLiteral("contact_triggers"), {QStringLiteral("system_user"), QStringLiteral("title")});
    // bernd's file is read for anna's key too, whose copy pairs with nothing, and for his own.
    QCOMPARE(rows, (QStringList{QStringLiteral("system_user=text:anna | title=text:Milch & Brötchen 🥨"),
                                QStringLiteral("system_user=text:bernd | title=text:Milch & Brötchen 🥨"),
                                QStringLiteral("system_user=text:bernd | title=text:Bernds"),
                                QStringLiteral("system_user=text:bernd | title=text:Bernds")}));
}

void test_reminders::bad_file_leaves_the_other_profile_whole_data() {
    QTest::addColumn<QString>("damage");
    for (const char* damage : {"zero length", "cut off", "header", "Triggers", "Reminders", "TimeTriggers"}) {
        QTest::newRow(damage) << QString::fromLatin1(damage);
    }
}

// bernd's file is damaged and comes first; anna's row must be there, and no row that nobody wrote.
void test_reminders::bad_file_leaves_the_other_profile_whole() {
    QFETCH(QString, damage);
    const QString bernd = QStringLiteral("bernd");
    const test_case_folder test_case({{bernd, bernd}, {anna, anna}});
    core_content damaged = one_of_each_kind();
    damaged.triggers = {trigger("b", 2)};
    damaged.times = {time_row("b")};
    const QString path = core_path(test_case, bernd);
    write_core(path, damaged);
    write_core(core_path(test_case, anna), one_of_each_kind());
    const std::filesystem::path file = QFile::encodeName(path).constData();
    if (damage == QLatin1String("zero length")) {
        ese_truncate(file, 0);
    } else if (damage == QLatin1String("cut off")) {
        ese_truncate(file, 20 * 4096);
    } else if (damage == QLatin1String("header")) {
        ese_flip_bit(file, 50, 3);
    } else {
        ese_zero_page(file, ese_pages_of(file, ese_table_object(file, damage.toStdString())).front().number);
    }
    const auto front = test_case.make_front();
    front->find_source_file();
    front->extract_timetriggers();
    QStringList rows =
        test_case.dump(QStringLiteral("time_reminders"), {QStringLiteral("system_user"), QStringLiteral("date_time")});
    QVERIFY(rows.removeOne(QStringLiteral("system_user=text:anna | date_time=integer:1556704860")));
    for (const QString& row : qAsConst(rows)) { // with only "Reminders" damaged, bernd's trigger still counts
        QVERIFY2(damage == QLatin1String("Reminders") && row.endsWith(QStringLiteral("date_time=integer:1556704800")),
                 qPrintable(row));
    }
}

void test_reminders::coordinates_that_are_no_numbers() {
    const test_case_folder test_case;
    const QString path = core_path(test_case, anna);
    QDir().mkpath(QFileInfo(path).path());
    ese_writer file(QFile::encodeName(path).constData(), 4096);
    const auto write = [&file](const core_table& table, const ese_row& row) {
        file.begin_table(table.name, table.columns);
        file.add_row(row);
        file.end_table();
    };
    core_table places = core_location_triggers();
    places.columns[1].type = places.columns[2].type = places.columns[3].type = ese_type::text;
    write(core_triggers(), trigger("p", 1));
    write(places, {"p", " 47°N", "'); drop table x", "1e3", nullptr, "here"});
    file.close();
    const auto front = test_case.make_front();
    front->find_source_file();
    front->extract_place_reminders();
    // No reminder stands at the trigger's position: the row is there, with empty reminder values.
    QCOMPARE(test_case.dump(QStringLiteral("place_reminders"),
                            {QStringLiteral("title"), QStringLiteral("creation_time"), QStringLiteral("latitude"),
                             QStringLiteral("map_url"), QStringLiteral("start_date_time")}),
             QStringList(QStringLiteral("title=text: | creation_time=integer:0 | latitude=text: 47°N | "
                                        "map_url=text:https://www.google.com/maps?q= 47°N,'); drop table x | "
                                        "start_date_time=integer:0")));
}

QTEST_MAIN(test_reminders)
#include "test_reminders.moc"
