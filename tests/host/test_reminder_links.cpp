// SPDX-License-Identifier: MIT
// Whether the parts of reminder rows belong together: real databases, the real program, and what it tells of each row.
#include "host_case.h"
#include "samples/cortana_core_schema.h"
#include "samples/sample_source.h"

#include <QSqlDatabase>
#include <QSqlQuery>
#include <QtTest>

namespace {

constexpr std::int64_t made = 1556704800; // 2019-05-01 10:00:00 UTC

// A word a row: reminders "id=title", triggers "id=reminder_id", times "id=second"; "-" stands for no value.
struct core_words {
    QString reminders;
    QString triggers;
    QString times;
    QString places = {};   // "id=name"
    QString contacts = {}; // likewise
};

std::vector<std::pair<ese_value, std::string>> pairs_of(const QString& words) {
    std::vector<std::pair<ese_value, std::string>> pairs;
    for (const QString& word : words.split(QLatin1Char(' '), Qt::SkipEmptyParts)) {
        const std::string id = word.section(QLatin1Char('='), 0, 0).toStdString();
        pairs.push_back(
            {id == "-" ? ese_value(nullptr) : ese_value(id), word.section(QLatin1Char('='), 1).toStdString()});
    }
    return pairs;
}

void write_table(ese_writer& file, const core_table& table, const std::vector<ese_row>& rows) {
    file.begin_table(table.name, table.columns);
    for (const ese_row& row : rows) {
        file.add_row(row);
    }
    file.end_table();
}

void write_core(const host_case& host, const QByteArray& user, const core_words& words) {
    const QByteArray folder = host.speech_folder(user) + "/../../ESEDatabase_CortanaCoreInstance";
    host.make_folders(host.speech_folder(user));
    host.make_folders(folder);
    std::vector<ese_row> reminders;
    std::vector<ese_row> triggers;
    std::vector<ese_row> times;
    for (const auto& [id, title] : pairs_of(words.reminders)) {
        const std::int64_t time = filetime_of(made);
        reminders.push_back({id, 1, 0, time, time, time, nullptr, title, "text of " + title});
    }
    const int kind = !words.places.isEmpty() ? 1 : words.contacts.isEmpty() ? 2 : 3;
    for (const auto& [id, reminder] : pairs_of(words.triggers)) {
        triggers.push_back({id, reminder, kind, filetime_of(made)});
    }
    for (const auto& [id, second] : pairs_of(words.times)) {
        times.push_back({id, filetime_of(made + std::stoi(second)), 0, "", 1, 0, "", ""});
    }
    ese_writer file((folder + "/CortanaCoreDb.dat").constData(), 4096);
    write_table(file, core_triggers(), triggers);
    write_table(file, core_reminders(), reminders);
    write_table(file, core_time_triggers(), times);
    if (!words.places.isEmpty()) {
        std::vector<ese_row> rows;
        for (const auto& [id, name] : pairs_of(words.places)) {
            rows.push_back({id, 48.5, 11.5, 100.0, nullptr, name});
        }
        write_table(file, core_location_triggers(), rows);
    }
    if (!words.contacts.isEmpty()) {
        std::vector<ese_row> rows;
        for (const auto& [id, name] : pairs_of(words.contacts)) {
            rows.push_back({id, "", 1, 0, "", "", name, ""});
        }
        write_table(file, core_contact_triggers(), rows);
    }
    file.close();
}

QString links_of(const host_case& host) {
    return QString::fromUtf8(host.result() + "/Artifacts_Result/Cortana/Cortana_links.sqlite");
}

// "1 confirmed A" a row: key, what the ids say, and the linked title ("" where there is none).
QStringList told(const host_case& host) {
    QStringList rows;
    QSqlDatabase database = QSqlDatabase::addDatabase("QSQLITE"_q, "told"_q);
    database.setDatabaseName(links_of(host));
    if (database.open()) {
        QSqlQuery query("select INT||' '||reminder_link||' '||coalesce(linked_title,'') from reminder_links "
                        "order by table_name,INT"_q,
                        database);
        while (query.next()) {
            rows.append(query.value(0).toString());
        }
        query.exec("select '- not shown '||title from reminders_not_shown order by title"_q);
        while (query.next()) {
            rows.append(query.value(0).toString());
        }
    }
    database = QSqlDatabase();
    QSqlDatabase::removeDatabase("told"_q);
    return rows;
}

} // namespace

class test_reminder_links : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void follows_the_ids_data() {
        QTest::addColumn<QString>("reminders");
        QTest::addColumn<QString>("triggers");
        QTest::addColumn<QString>("times");
        QTest::addColumn<QStringList>("expected");
        const auto add = [](const char* name, const QString& reminders, const QString& triggers, const QString& times,
                            const QStringList& expected) {
            QTest::newRow(name) << reminders << triggers << times << expected;
        };
        add("equal", "r1=A r2=B"_q, "t1=r1 t2=r2"_q, "t1=1 t2=2"_q, {"1 confirmed A"_q, "2 confirmed B"_q});
        add("shifted", "r0=X r1=A r2=B"_q, "t1=r1 t2=r2"_q, "t1=1 t2=2"_q,
            {"1 contradicted A"_q, "2 contradicted B"_q, "- not shown A"_q, "- not shown B"_q});
        add("turned", "r1=A r2=B r3=C"_q, "t3=r3 t2=r2 t1=r1"_q, "t3=3 t2=2 t1=1"_q,
            {"1 contradicted C"_q, "2 confirmed B"_q, "3 contradicted A"_q});
        add("keys in another order, equal times", "r1=A r2=B"_q, "t2=r2 t1=r1"_q, "t1=1 t2=1"_q,
            {"1 confirmed B"_q, "2 confirmed A"_q});
        add("a reminder's id missing", "r1=A -=B"_q, "t1=r1 t2=r2"_q, "t1=1 t2=2"_q,
            {"1 confirmed A"_q, "2 undecided "_q});
        add("a reminder's id repeated", "r1=A r1=B"_q, "t1=r1"_q, "t1=1"_q, {"1 undecided "_q, "- not shown B"_q});
        add("a trigger's id repeated", "r1=A r2=B"_q, "t1=r1 t1=r2"_q, "t1=1"_q, {"1 undecided "_q, "2 undecided "_q});
        add("a row without an id", "r1=A r2=B r3=C"_q, "t1=r1 t2=r2"_q, "t1=1 t2=2 -=9"_q,
            {"1 confirmed A"_q, "2 confirmed B"_q, "- not shown C"_q});
        add("not to be told apart", "r1=A r2=B r3=C"_q, "t1=r1 t2=r2 t3=r3"_q, "t1=1 t2=1 t3=3 -=9"_q,
            {"1 undecided "_q, "2 undecided "_q, "3 contradicted C"_q, "- not shown B"_q});
    }
    void follows_the_ids() {
        QFETCH(QString, reminders);
        QFETCH(QString, triggers);
        QFETCH(QString, times);
        QFETCH(QStringList, expected);
        const host_case host;
        write_core(host, "anna", {reminders, triggers, times});
        const host_answer answer = host.extract();
        QVERIFY2(answer.code == 0, answer.error.constData());
        QCOMPARE(told(host), expected);
        const QJsonObject links = answer.json()["reminder_links"_q].toObject();
        QCOMPARE(links["contradicted"_q].toInt(), expected.filter("contradicted"_q).size());
        QCOMPARE(links["undecided"_q].toInt(), expected.filter("undecided"_q).size());
    }

    // Rows of an earlier run keep what was told of them; emptied tables lose it before their keys are used again.
    void several_profiles_and_runs() {
        const host_case host;
        write_core(host, "anna", {"r0=X r1=A"_q, "t1=r1"_q, "t1=1"_q});
        write_core(host, "bernd", {"r1=B"_q, "t1=r1"_q, "t1=2"_q});
        QCOMPARE(host.extract().code, 0);
        const QStringList first = {"1 contradicted A"_q, "2 confirmed B"_q};
        QCOMPARE(told(host), first + QStringList("- not shown A"_q));
        write_core(host, "anna", {"r1=C"_q, "t1=r1"_q, "t1=1"_q});
        QCOMPARE(host.extract("--user anna"_q).code, 0);
        QCOMPARE(told(host), first + QStringList({"3 confirmed C"_q, "- not shown A"_q}));
        QCOMPARE(host.extract("--clear --tables place_reminders"_q).code, 0);
        QCOMPARE(told(host), first + QStringList({"3 confirmed C"_q, "- not shown A"_q}));
        QCOMPARE(host.extract("--clear"_q).code, 0);
        QCOMPARE(told(host), QStringList({"1 confirmed C"_q, "2 confirmed B"_q}));
        QCOMPARE(host.extract("--clear --all-profiles"_q).code, 0); // bernd's run writes anna's row once more
        QCOMPARE(told(host), QStringList({"1 confirmed C"_q, "2 confirmed C"_q, "3 confirmed B"_q, "4 confirmed B"_q}));
    }

    // The sample's pairs are all meant; places and contacts among them.
    void confirms_the_sample() {
        const host_case host;
        QVERIFY(write_sample_source(QString::fromUtf8(host.source())));
        const QJsonObject links = host.extract().json()["reminder_links"_q].toObject();
        QCOMPARE(links["confirmed"_q].toInt(), 14);
        QCOMPARE(told(host).size(), 14);
    }

    // What a lost worker leaves to do includes this.
    void survives_a_lost_step() {
        const host_case host;
        write_core(host, "dies_before_searches", {"r1=A r2=B"_q, "t1=r2"_q, "t1=1"_q});
        QCOMPARE(host.extract(" --library " MISBEHAVING_PLUGIN ""_q).code, 3);
        QCOMPARE(told(host), QStringList({"1 contradicted B"_q, "- not shown B"_q}));
    }

    // One more reminder than triggers of a kind: each row shows the extra one's title.
    void exports_and_rows_tell_it_data() {
        QTest::addColumn<QString>("places");
        QTest::addColumn<QString>("contacts");
        QTest::newRow("time_reminders") << ""
                                        << "";
        QTest::newRow("place_reminders") << "t1=Home"
                                         << "";
        QTest::newRow("contact_triggers") << ""
                                          << "t1=Zoe";
    }
    void exports_and_rows_tell_it() {
        QFETCH(QString, places);
        QFETCH(QString, contacts);
        const QString table = QString::fromUtf8(QTest::currentDataTag());
        const bool by_time = places.isEmpty() && contacts.isEmpty();
        const host_case host;
        write_core(host, "anna", {"r0=X r1=A"_q, "t1=r1"_q, by_time ? QString("t1=1"_q) : QString(), places, contacts});
        const host_answer extracted = host.extract();
        QVERIFY2(extracted.code == 0, extracted.error.constData());
        QCOMPARE(told(host), QStringList({"1 contradicted A"_q, "- not shown A"_q}));
        const QByteArray rows = host.run("rows {R} --tables searches,"_q + table).out;
        QVERIFY2(rows.contains("reminder_link: contradicted | linked_title: A | linked_text: text of A"),
                 rows.constData());
        QVERIFY2(rows.contains("1 of 1 rows contradicted"), rows.constData());
        QCOMPARE(host.run("export --format csv,jsonl,html {R}"_q).code, 0);
        const QString exports = QString::fromUtf8(host.result() + "/Artifacts_Result/Cortana/exports/");
        QVERIFY(whole_file(exports + table + ".csv"_q).contains(",contradicted,A,text of A"));
        QVERIFY(whole_file(exports + table + ".jsonl"_q).contains("\"reminder_link\":\"contradicted\""));
        QVERIFY(
            whole_file(exports + "report.html"_q).contains("<td>A<div class=\"pos\"><b>by position</b> X</div></td>"));
        QVERIFY(!whole_file(exports + "searches.csv"_q).contains("reminder_link"));
    }
};

QTEST_GUILESS_MAIN(test_reminder_links)

#include "test_reminder_links.moc"
