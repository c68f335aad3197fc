// SPDX-License-Identifier: MIT
// What all steps share, each over the sample's two profiles: the log of failures, cancel, evidence that is damaged,
// rows that cannot be committed.
#include "common/plugin_static_function.h"
#include "samples/ese_damage.h"
#include "samples/hive_writer.h"
#include "samples/sample_source.h"
#include "tests/extractors/all_steps.h"
#include "tests/support/test_support.h"

#include <QDir>
#include <QtTest>

namespace {

const QString core = "AppData/Local/Packages/Microsoft.Windows.Cortana_cw5n1h2txyewy/LocalState/"
                     "ESEDatabase_CortanaCoreInstance/CortanaCoreDb.dat"_q;
const QString webcache = "AppData/Local/Microsoft/Windows/WebCache/WebCacheV01.dat"_q;
const QString hive = "NTUSER.DAT"_q;

using damage = std::function<void(const QString& path)>;

damage cut_at(qint64 size) {
    return [size](const QString& path) { QVERIFY(QFile::resize(path, size)); };
}

damage zero_page_of(const char* table) {
    return [table](const QString& path) {
        const std::filesystem::path file = QFile::encodeName(path).constData();
        ese_zero_page(file, ese_pages_of(file, ese_table_object(file, table)).front().number);
    };
}

damage change_hive(void (*change)(QByteArray& bytes)) {
    return [change](const QString& path) {
        QFile file(path);
        QVERIFY(file.open(QIODevice::ReadWrite));
        QByteArray bytes = file.readAll();
        change(bytes);
        QVERIFY(file.resize(0) && file.seek(0) && file.write(bytes) == bytes.size());
    };
}

} // namespace

Q_DECLARE_METATYPE(damage)

class test_steps : public QObject {
    Q_OBJECT

    std::unique_ptr<test_case_folder> folder;
    std::unique_ptr<cortana_winos> front;

    QString table_of(int number) const { return QLatin1String(steps[number].table); }
    // The step's log.
    QStringList run(int number) {
        folder->take_log();
        (front.get()->*steps[number].extract)();
        return folder->take_log();
    }
    void refuse_rows(int number, const QString& condition) const {
        folder->execute("create trigger refuse before insert on %1 when %2 "
                        "begin select raise(abort, 'refused'); end"_q.arg(table_of(number), condition));
    }
    void refuse_rows_from(int number, int first) const {
        refuse_rows(number, "(select count(*) from %1) >= %2"_q.arg(table_of(number)).arg(first - 1));
    }

private Q_SLOTS:
    void init() {
        folder = std::make_unique<test_case_folder>(
            QList<QPair<QString, QString>>{{"anna"_q, "CORP\\anna"_q}, {"bernd"_q, QString()}});
        QVERIFY(write_sample_source(folder->root()));
        front = folder->make_front();
        front->find_source_file();
    }
    // The log is the process's: a case ends before the next begins.
    void cleanup() {
        front.reset();
        folder.reset();
    }

    void failures_are_told_data() { add_steps(); }

    // No source; each row of the first profile is refused; the table is gone; the database cannot be opened.
    void failures_are_told() {
        QFETCH(int, number);
        const QString table = table_of(number);
        QStringList told;
        const auto tell = [&] {
            QStringList log = run(number);
            log.removeDuplicates(); // as many failures as rows
            told << log;
        };
        front = folder->make_front();
        tell();
        front->find_source_file();
        refuse_rows(number, "new.system_user = 'anna'"_q);
        tell();
        told << folder->dump(table, {"system_user"_q});
        folder->execute("drop table "_q + table);
        tell();
        front->winos_set_destination_location(folder->result_dir(), QString(), folder->result_dir());
        tell();
        QVERIFY(matches_golden(told, GOLDEN_DIR "/%1_log.txt"_q.arg(table)));
    }

    void cancelled_before_it_starts_data() { add_steps(); }

    // Databases without any record: only the look before each file is left to see it.
    void cancelled_before_it_starts() {
        QFETCH(int, number);
        for (const QString& file : {core, webcache, hive}) {
            folder->write_file("Users/anna/"_q + file, "no database");
            folder->write_file("Users/bernd/"_q + file, "no database");
        }
        front->winos_cancel_extraction();
        const QStringList log = run(number);
        QCOMPARE(folder->dump(table_of(number)), QStringList());
        QCOMPARE(log.filter("STARTS"_q, Qt::CaseInsensitive).size(), number == searches ? 3 : 1);
        QCOMPARE(log.filter("ENDS"_q).size(), number == searches ? 1 : 0);
    }

    void cancelled_at_a_failure_data() {
        QTest::addColumn<int>("number");
        QTest::addColumn<int>("refused"); // this row and all behind it
        QTest::addColumn<int>("ends");
        QTest::newRow("between reminders") << int(time_reminders) << 2 << 0;
        QTest::newRow("no reminder left") << int(time_reminders) << 9 << 1;
        QTest::newRow("between recordings") << int(audio) << 2 << 0;
        QTest::newRow("no recording left") << int(audio) << 6 << 1;
        QTest::newRow("between entities") << int(graph) << 2 << 0;
        QTest::newRow("between cache entries") << int(cache_files) << 2 << 0;
        QTest::newRow("between containers") << int(cache_files) << 5 << 0;
        QTest::newRow("between WebCache files") << int(cache_files) << 7 << 0;
        QTest::newRow("no cache entry left") << int(cache_files) << 14 << 0;
        QTest::newRow("between searches") << int(searches) << 1 << 1;
        QTest::newRow("between hives") << int(searches) << 2 << 1;
        QTest::newRow("no recent search left") << int(searches) << 4 << 2;
    }

    // What was written stays, nothing is tried behind it.
    void cancelled_at_a_failure() {
        QFETCH(int, number);
        QFETCH(int, refused);
        refuse_rows_from(number, refused);
        const at_failure_line cancel([this] { front->winos_cancel_extraction(); });
        const QStringList log = run(number);
        QCOMPARE(folder->dump(table_of(number)).size(), refused - 1);
        QCOMPARE(log.filter("refused"_q).size(), 1);
        QTEST(log.filter("ENDS"_q).size(), "ends");
    }

    void null_texts_of_the_host_data() { add_steps(); }

    // They stay NULL in rows. bernd's folder is known by the domain user only, whose account it is not taken for.
    void null_texts_of_the_host() {
        QFETCH(int, number);
        struct_GLOBAL_COMMON_VANTOR_AND_ARTIFACT_source_info source;
        source.fs_extraction_source_path = folder->root();
        source.system_account_QList = {{"anna"_q, QString()}, {QString(), "bernd"_q}};
        plugin_static_function::set_source_info(source);
        front->winos_set_source_info(source);
        front->find_source_file();
        run(number);
        QStringList rows = folder->dump(table_of(number), {"system_user"_q, "domain_user"_q, "os_scheme_display"_q});
        rows.removeDuplicates();
        QCOMPARE(rows, QStringList({"system_user=text:anna | domain_user=null: | os_scheme_display=null:"_q,
                                    "system_user=text:bernd | domain_user=text: | os_scheme_display=null:"_q}));
    }

    void relative_root_data() { add_steps(); }

    // It means what it means when it is set: the rows are those of the absolute root, wherever the process goes then.
    void relative_root() {
        QFETCH(int, number);
        run(number);
        const QStringList rows = folder->dump(table_of(number));
        folder->execute("delete from "_q + table_of(number));
        struct_GLOBAL_COMMON_VANTOR_AND_ARTIFACT_source_info source;
        source.fs_extraction_source_path = "source/"_q;
        source.os_scheme_display = "Windows"_q;
        source.system_account_QList = plugin_static_function::system_account_QList;
        QVERIFY(QDir::setCurrent(folder->root() + ".."_q));
        front->winos_set_source_info(source);
        QVERIFY(QDir::setCurrent("/"_q));
        front->find_source_file();
        run(number);
        QVERIFY(!rows.isEmpty());
        QCOMPARE(folder->dump(table_of(number)), rows);
    }

    void damaged_file_data() {
        QTest::addColumn<int>("number");
        QTest::addColumn<damage>("spoil");
        QTest::addColumn<bool>("is_read");
        const auto row = [](const char* what, int number, const damage& spoil, bool is_read = false) {
            QTest::newRow(what) << number << spoil << is_read;
        };
        row("core of zero length", time_reminders, cut_at(0));
        row("core cut off", time_reminders, cut_at(20 * 32768));
        row("core's header", time_reminders,
            [](const QString& path) { ese_flip_bit(QFile::encodeName(path).constData(), 50, 3); });
        row("Triggers", time_reminders, zero_page_of("Triggers"));
        row("Reminders", time_reminders, zero_page_of("Reminders"), true); // the triggers still count
        row("TimeTriggers", time_reminders, zero_page_of("TimeTriggers"));
        row("WebCache cut off", cache_files, cut_at(20 * 32768));
        row("Containers", cache_files, zero_page_of("Containers"));
        row("dirty hive", searches, change_hive(hive_damage::make_dirty), true);
        row("bad block", searches, change_hive(hive_damage::spoil_block));
        row("hive cut off", searches, change_hive([](QByteArray& bytes) { bytes.chop(1000); }));
        row("hive of zero length", searches, cut_at(0));
        row("hive without the keys", searches, change_hive([](QByteArray& bytes) { bytes = empty_hive(); }));
        row("folder in the hive's place", searches,
            [](const QString& path) { QVERIFY(QFile::remove(path) && QDir().mkpath(path)); });
    }

    // The first profile's file is damaged. The rows are those of a run without that file, and no line tells of it.
    void damaged_file() {
        QFETCH(int, number);
        QFETCH(damage, spoil);
        QFETCH(bool, is_read);
        const QMap<int, QPair<QString, QString>> read = {{time_reminders, {core, "date_time"_q}},
                                                         {cache_files, {webcache, "file_name"_q}},
                                                         {searches, {hive, "search_keyword"_q}}};
        const auto rows = [&] {
            const QStringList failures = run(number).filter(QRegularExpression("FAILED|Unable"_q));
            const QStringList found = folder->dump(table_of(number), {"system_user"_q, read[number].second});
            folder->execute("delete from "_q + table_of(number));
            return found + failures;
        };
        const QString path = folder->root() + "Users/anna/"_q + read[number].first;
        const QStringList sound = rows();
        spoil(path);
        const QStringList damaged = rows();
        QVERIFY(QFile::rename(path, path + "-gone"_q));
        const QStringList gone = rows();
        QVERIFY(!gone.isEmpty() && gone != sound);
        QCOMPARE(gone.filter("system_user=text:bernd"_q), gone);
        QCOMPARE(damaged, is_read ? sound : gone);
    }

    void progress_is_told_more_than_a_second_apart() {
        struct {
            qint64 now = 0;
            qint64 started = 0;
            qint64 elapsed() const { return now - started; }
            void start() { started = now; }
        } timer;
        QVector<qint64> told;
        for (const qint64 now : {0, 1000, 1001, 1002, 2001, 2002, 9000, 9999}) {
            timer.now = now;
            if (take_progress(timer)) {
                told << now;
            }
        }
        QCOMPARE(told, (QVector<qint64>{1001, 2002, 9000}));
    }

    // The disk fills between the last insert and the commit.
    void failed_commit_is_logged() {
        refuse_rows_from(cache_files, 14);
        std::unique_ptr<full_disk> full;
        const at_failure_line fill([&full] {
            if (!full) {
                full = std::make_unique<full_disk>(12 * 1024); // the journal fits, the table's page lies behind
            }
        });
        const QStringList log = run(cache_files);
        full.reset();
        QCOMPARE(folder->dump("cache_files"_q), QStringList());
        QCOMPARE(log.size(), 8); // the start, the refused row, the commit, the end
        QCOMPARE(log.at(4), log.at(1));
        QVERIFY2(log.at(5).endsWith("Unable to commit transaction"_q), qPrintable(log.at(5)));
        QVERIFY2(log.at(6).endsWith(":-- COMMIT"_q), qPrintable(log.at(6)));
    }
};

QTEST_MAIN(test_steps)
#include "test_steps.moc"
