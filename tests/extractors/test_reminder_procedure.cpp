// SPDX-License-Identifier: MIT
// The procedure of the reminder steps against the literal walk that it stands for, and its cancellation.
#include "ese/timetriggers.h"
#include "evidence/ese_damage.h"
#include "extractors/reminder_procedure.h"
#include "tests/extractors/core_files.h"

#include <QtTest>

#include <random>

namespace {

const QStringList compared_columns = {QStringLiteral("system_user"), QStringLiteral("title"), QStringLiteral("text"),
                                      QStringLiteral("completion_time"), QStringLiteral("date_time")};

// The literal procedure with the real reader: both tables are read for every key, and the lists really grow.
QStringList literal_rows(const QStringList& files, const QStringList& users) {
    QStringList rows;
    timetriggers reader;
    for (int file = 0; file < files.size(); ++file) {
        reader.start_parsing(files[file], QStringLiteral("Triggers"));
        for (const auto& record : qAsConst(reader.list_struct_data)) {
            if (record.kind == QLatin1String("2")) {
                reader.start_parsing(files[file], QStringLiteral("Reminders"),
                                     QString::fromLatin1(record.reminder_id.constData()), QStringList());
                reader.start_parsing(files[file], QStringLiteral("TimeTriggers"),
                                     QString::fromLatin1(record.id.constData()), 1);
            }
        }
        for (int position = 0; position < reader.list_time_triggers_data.size(); ++position) {
            const auto& row = reader.list_time_triggers_data.at(position);
            if (row.lookup_key == row.id) {
                const auto paired = reader.list_remainder_data.value(position);
                rows << QStringLiteral("system_user=text:%1 | title=text:%2 | text=text:%3 | "
                                       "completion_time=integer:%4 | date_time=integer:%5")
                            .arg(users[file], paired.title, paired.text)
                            .arg(filetime_to_unix_seconds(paired.completion_time))
                            .arg(filetime_to_unix_seconds(row.date_time));
            }
        }
    }
    return rows;
}

class random_core {
public:
    explicit random_core(unsigned seed) : random(seed) {}

    core_content content() {
        core_content made;
        for (int left = up_to(6); left > 0; --left) {
            const int kind = up_to(3) == 0 ? 1 : 2; // before id(): the order must be the same with every compiler
            made.triggers.push_back(trigger(id(), kind));
        }
        for (int left = up_to(6); left > 0; --left) {
            ese_row row = reminder(nullptr, nullptr);
            if (up_to(5) != 0) {
                row[7] = "title " + std::to_string(up_to(99));
            }
            if (up_to(1) == 0) {
                row[6] = filetime_of(may_first + up_to(99));
            }
            made.reminders.push_back(row);
        }
        for (int left = up_to(6); left > 0; --left) {
            const int minutes = up_to(9999);
            made.times.push_back(time_row(id(), may_first + minutes));
        }
        if (up_to(7) == 0) {
            made.missing << QStringLiteral("Reminders");
        }
        return made;
    }
    bool is_unreadable() { return up_to(7) == 0; }

private:
    int up_to(int limit) { return static_cast<int>(random() % static_cast<unsigned>(limit + 1)); }

    // Few different ids, so that they repeat; one that is cut to the same text as another, one that differs between
    // UTF-8 and Latin-1, an empty one and none.
    ese_value id() {
        const std::string ids[] = {"a", "b", std::string("a\0b", 3), "é", ""};
        const int number = up_to(5);
        return number == 5 ? ese_value() : ese_value(ids[number]);
    }

    std::mt19937 random;
};

} // namespace

class test_reminder_procedure : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void equals_the_literal_walk_data() {
        QTest::addColumn<int>("profiles");
        for (const int profiles : {1, 2, 3}) {
            QTest::addRow("%d profiles", profiles) << profiles;
        }
    }

    void equals_the_literal_walk() {
        QFETCH(int, profiles);
        constexpr int databases = 70;
        QStringList users;
        QList<QPair<QString, QString>> accounts;
        for (int profile = 0; profile < profiles; ++profile) {
            users << QStringLiteral("user%1").arg(profile);
            accounts.append({users.last(), QString()});
        }
        const test_case_folder test_case(accounts);
        int compared_rows = 0;
        for (int seed = 0; seed < databases; ++seed) {
            random_core random(static_cast<unsigned>(seed));
            for (const QString& user : qAsConst(users)) {
                write_core(core_path(test_case, user), random.content());
                if (random.is_unreadable()) {
                    ese_truncate(QFile::encodeName(core_path(test_case, user)).constData(), 100);
                }
            }
            const auto front = test_case.make_front();
            front->find_source_file();
            QCOMPARE(front->found_cortana_core_db_files().size(), profiles);
            front->extract_timetriggers();
            const QStringList rows =
                test_case.dump(QStringLiteral("time_reminders"), compared_columns).mid(compared_rows);
            const QStringList wanted = literal_rows(front->found_cortana_core_db_files(), users);
            QVERIFY2(rows == wanted,
                     qPrintable(QStringLiteral("seed %1\nis\n%2\nwanted\n%3")
                                    .arg(seed)
                                    .arg(rows.join(QLatin1Char('\n')), wanted.join(QLatin1Char('\n')))));
            compared_rows += rows.size();
        }
        QVERIFY(compared_rows >= databases); // rows enough that the comparison means something
    }

    void cancelled_step_data() {
        QTest::addColumn<int>("cancel_after"); // rows
        QTest::addColumn<bool>("ends");
        QTest::newRow("before the first file") << 0 << false;
        QTest::newRow("between rows") << 1 << false;
        QTest::newRow("after the last row") << 3 << true;
    }

    void cancelled_step() {
        QFETCH(int, cancel_after);
        using time_trigger = specific_table::struct_time_triggers_data;
        test_case_folder test_case;
        const QString path = core_path(test_case, QStringLiteral("anna"));
        core_content content;
        content.reminders = {reminder("only one")};
        content.triggers = {trigger("a", 2), trigger("b", 2), trigger("c", 2)};
        content.times = {time_row("a"), time_row("b"), time_row("c")};
        write_core(path, content);
        const QString root = test_case.root();
        const QString database = test_case.database_path();
        const QString none;
        bool cancelled = cancel_after == 0;
        int rows = 0;
        const step_context context{root, none, database, none, cancelled, [&] { cancelled = ++rows == cancel_after; }};
        const reminder_step<time_trigger> step{
            {"f()", "started", "", "ended", {"", false, "", ""}, "INSERT INTO time_reminders(title) VALUES(?)"},
            QStringLiteral("2"),
            QStringLiteral("TimeTriggers"),
            &specific_table::list_time_triggers_data,
            {{"title", [](const reminder_row<time_trigger>& row) -> QVariant { return row.trigger.id; }}}};
        std::unique_ptr<timetriggers> reader;
        test_case.take_log();
        run_reminder_step(context, step, reader, {path});
        QVERIFY(!reader);
        QCOMPARE(test_case.dump(QStringLiteral("time_reminders")).size(), cancel_after);
        QTEST(test_case.take_log().contains(QStringLiteral("f:-- ended")), "ends");
    }
};

QTEST_MAIN(test_reminder_procedure)
#include "test_reminder_procedure.moc"
