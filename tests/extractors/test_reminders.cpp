// SPDX-License-Identifier: MIT
// The three reminder steps on real files: log lines, several profiles, bad files, odd values.
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
};

const step_case steps[] = {
    {"time_reminders", &cortana_winos::extract_timetriggers},
    {"place_reminders", &cortana_winos::extract_place_reminders},
    {"contact_triggers", &cortana_winos::extract_contact_triggers},
};

void add_steps() {
    QTest::addColumn<int>("step");
    int number = 0;
    for (const step_case& step : steps) {
        QTest::newRow(step.table) << number++;
    }
}

} // namespace

class test_reminders : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void log_lines_data() { add_steps(); }

    void log_lines() {
        QFETCH(int, step);
        const QString table = QLatin1String(steps[step].table);
        test_case_folder test_case;
        const auto front = test_case.make_front();
        const auto log_of_step = [&] {
            front->find_source_file();
            test_case.take_log();
            (front.get()->*steps[step].extract)();
            return test_case.take_log();
        };
        const QStringList good = log_of_step(); // no source

        core_content other_kinds = one_of_each_kind();
        other_kinds.triggers = {trigger("p", 4), trigger("t", 4), trigger("c", 4)};
        write_core(core_path(test_case, anna), other_kinds);
        QCOMPARE(log_of_step(), good);
        QCOMPARE(test_case.dump(table), QStringList());

        write_core(core_path(test_case, anna), one_of_each_kind());
        test_case.execute(QStringLiteral("drop table ") + table);
        QStringList log = good + log_of_step();
        front->winos_set_destination_location(test_case.result_dir(), QString(), test_case.result_dir());
        log += log_of_step();
        QVERIFY(matches_golden(log, QStringLiteral(GOLDEN_DIR "/") + table + QStringLiteral("_log.txt")));
    }

    void earlier_profiles_are_written_again() {
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
            test_case.dump(QStringLiteral("contact_triggers"),
                           {QStringLiteral("system_user"), QStringLiteral("contact_name"), QStringLiteral("title")});
        const auto row = [](const char* user, const char* title) {
            return QStringLiteral("system_user=text:%1 | contact_name=text: | title=text:%2")
                .arg(QString::fromUtf8(user), QString::fromUtf8(title));
        };
        // bernd's file is read for anna's key too, whose copy pairs with nothing, and for his own.
        QCOMPARE(rows, (QStringList{row("anna", "Milch & Brötchen 🥨"), row("bernd", "Milch & Brötchen 🥨"),
                                    row("bernd", "Bernds"), row("bernd", "Bernds")}));
    }

    void bad_file_leaves_the_other_profile_whole_data() {
        QTest::addColumn<QString>("damage");
        for (const char* damage : {"zero length", "cut off", "header", "Triggers", "Reminders", "TimeTriggers"}) {
            QTest::newRow(damage) << QString::fromLatin1(damage);
        }
    }

    // bernd's file is damaged and comes first; anna's row must be there, and no row that nobody wrote.
    void bad_file_leaves_the_other_profile_whole() {
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
        QStringList rows = test_case.dump(QStringLiteral("time_reminders"),
                                          {QStringLiteral("system_user"), QStringLiteral("date_time")});
        QVERIFY(rows.removeOne(QStringLiteral("system_user=text:anna | date_time=integer:1556704860")));
        for (const QString& row : qAsConst(rows)) { // with only "Reminders" damaged, bernd's trigger still counts
            QVERIFY2(damage == QLatin1String("Reminders") &&
                         row.endsWith(QStringLiteral("date_time=integer:1556704800")),
                     qPrintable(row));
        }
    }

    void coordinates_that_are_no_numbers() {
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
};

QTEST_MAIN(test_reminders)
#include "test_reminders.moc"
