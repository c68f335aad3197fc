// SPDX-License-Identifier: MIT
// cache_files, cookies and domstore from real WebCacheV01.dat files: selection, types, damage, cancel, the exact log.
#include "ese/cache.h"
#include "evidence/ese_damage.h"
#include "extractors/webcache_paths.h"
#include "extractors/webcache_procedure.h"
#include "tests/extractors/webcache_files.h"

#include <QtTest>

namespace {

const QString anna = QStringLiteral("anna");
const QString bernd = QStringLiteral("bernd");

using extract_member = void (cortana_winos::*)();

struct table_under_test {
    const char* name;
    extract_member extract;
    const char* container_name;
};
const table_under_test tables[] = {
    {"cache_files", &cortana_winos::extract_cache_files, "Content"},
    {"cookies", &cortana_winos::extract_cookies, "Cookies"},
    {"domstore", &cortana_winos::extract_domstore, "DOMStore"},
};

void add_tables() {
    QTest::addColumn<int>("table");
    for (int index = 0; index < 3; ++index) {
        QTest::newRow(tables[index].name) << index;
    }
}

constexpr char insert_statement[] =
    "INSERT INTO cache_files(bookmark,system_user,domain_user,file_name,file_size,file_path,preview_file_path,"
    "export_file_paths,file_exists,windows_path,url,access_count,creation_timestamp,modification_timestamp,"
    "last_accessed_timestamp,sync_timestamp,expiration_timestamp,source_file,os_scheme_display,source_count_name) "
    "VALUES(0,?,?,?,?,?,?,?,?,?,?,?,?,?,?,?,?,?,?,?)";

// cache_files of the files, cancelled after that many rows.
void extract_until(int rows_before_cancel, const test_case_folder& folder, const QStringList& files) {
    const webcache_step step{{"test", "start", "not opened", "end", {"failed", false, "", ""}, insert_statement},
                             QStringLiteral("Content"),
                             windows_path_in_secure_directory,
                             whole_url};
    const QString root = folder.root();
    const QString text = QStringLiteral("");
    const QString database = folder.database_path();
    bool cancelled = false;
    int rows = 0;
    const step_context context{root, text,      database,
                               text, cancelled, [&] { cancelled = ++rows == rows_before_cancel; }};
    std::unique_ptr<specific_table> reader;
    run_webcache_step<cache>(context, step, reader, files);
    QVERIFY(!reader);
}

void extract(const test_case_folder& folder, extract_member step = &cortana_winos::extract_cache_files) {
    const auto front = folder.make_front();
    front->find_source_file();
    (front.get()->*step)();
}

} // namespace

class test_webcache : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void containers_are_selected_data() { add_tables(); }

    void containers_are_selected() {
        QFETCH(int, table);
        const char* name = tables[table].container_name;
        const std::string lower = QByteArray(name).toLower().toStdString();
        const auto with_directory = [&](const char* directory, const char* file) {
            return stored_container{{0, name, directory, ""}, {{file, "url"}}};
        };
        test_case_folder folder;
        write_database(database_of(folder, anna),
                       {cortana("Content", {{"of Content", "url"}}),
                        cortana("Cookies", {{"of Cookies", "url"}}),
                        cortana("DOMStore", {{"of DOMStore", "url"}}),
                        with_directory(R"(C:\microsoft.windows.cortana_x\)", "lower case directory"),
                        with_directory(R"(C:\MICROSOFT.WINDOWS.CORTANA_X\)", "capitals"),
                        with_directory(R"(C:\Edge\)", "other package"),
                        cortana(lower.c_str(), {{"lower case name", "url"}}),
                        {{0, nullptr, nullptr, nullptr}, {{"nothing", "url"}}},
                        {{0, name, R"(C:\Cortana\)", ""}, {{"no table", "url"}}, false},
                        cortana(name, {{"last", "url"}, {"of all", "url"}})});
        extract(folder, tables[table].extract);
        QCOMPARE(file_names(folder, QLatin1String(tables[table].name)),
                 QStringLiteral("of %1; lower case directory; last; of all").arg(QLatin1String(name)));
    }

    void values_are_typed() {
        const test_case_folder folder({{anna, QString()}});
        webcache_entry filled{"a.js", "url", 1, 123, 4294967295U, 130000000000000000, -5, 1, 116444736000000000,
                              nullptr};
        webcache_entry nulls{nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr};
        write_database(database_of(folder, anna), {cortana("Content", {filled, nulls})});
        extract(folder);
        QVERIFY(matches_golden(folder.dump(QStringLiteral("cache_files")),
                               QStringLiteral(GOLDEN_DIR "/cache_files_rows.txt")));
    }

    void absent_numbers_are_empty_texts() {
        test_case_folder folder;
        const QString path = folder.root() + QStringLiteral("WebCacheV01.dat");
        std::vector<ese_column> columns = webcache_entry_columns();
        for (ese_column& column : columns) {
            column.name += column.name == "FileSize" || column.name == "AccessCount" ? "Elsewhere" : "";
        }
        ese_writer file(QFile::encodeName(path).constData());
        write_webcache_containers(file, {{1, "Content", R"(C:\Cortana\)", ""}});
        file.begin_table("Container_1", columns);
        file.add_row(webcache_entry_row({"a.js", "url", 0, 123, 4}, 1, 1));
        file.end_table();
        file.close();
        extract_until(9, folder, {path});
        QCOMPARE(folder.dump(QStringLiteral("cache_files"),
                             {QStringLiteral("url"), QStringLiteral("file_size"), QStringLiteral("access_count")}),
                 QStringList(QStringLiteral("url=text:url | file_size=text: | access_count=text:")));
    }

    // The root's text within its path stays there too.
    void database_outside_the_source_is_named_whole() {
        test_case_folder folder;
        const QString path = folder.result_dir() + folder.root().mid(1) + QStringLiteral("WebCacheV01.dat");
        write_database(path, {cortana("Content", {{"a.js", "url"}})});
        extract_until(9, folder, {path});
        QCOMPARE(column_of(QStringLiteral("cache_files"), QStringLiteral("source_file"), folder),
                 QStringLiteral("text:") + path);
    }

    void unusable_files_are_passed_silently() {
        const QString cora = QStringLiteral("cora");
        test_case_folder folder({{anna, QString()}, {bernd, QString()}, {cora, QString()}});
        folder.write_file(database_of(folder, anna).mid(folder.root().size()), QByteArray(100000, 'x'));
        QDir().mkpath(QFileInfo(database_of(folder, bernd)).path());
        ese_writer without_containers(QFile::encodeName(database_of(folder, bernd)).constData());
        write_webcache_entries(without_containers, 1, {{"unlisted", "url"}});
        without_containers.close();
        write_database(database_of(folder, cora), {cortana("Content", {{"a.js", "url"}})});
        auto front = folder.make_front();
        front->find_source_file();
        QCOMPARE(front->found_webcache_files().size(), 3);
        folder.take_log();
        front->extract_cache_files();
        QCOMPARE(file_names(folder), QStringLiteral("a.js"));
        QCOMPARE(folder.take_log().size(), 2);
    }

    void records_before_an_unreadable_one_are_written() {
        test_case_folder folder;
        write_database(database_of(folder, anna),
                       {cortana("Content", {{"one", "url"}, {"two", "url"}, {"three", "url"}}),
                        cortana("Content", {{"of the next", "url"}})});
        QFile stored(database_of(folder, anna));
        QVERIFY(stored.open(QIODevice::ReadOnly));
        // EntryId 2 of container 1; before the ids the record tells in two bytes where its fixed values end.
        const qint64 ids[] = {2, 1};
        const int at = stored.readAll().indexOf(QByteArray(reinterpret_cast<const char*>(ids), sizeof(ids)));
        QVERIFY(at > 0);
        for (const int offset : {at - 2, at - 1}) {
            ese_set_byte(QFile::encodeName(stored.fileName()).constData(), static_cast<std::uint64_t>(offset), 0xFF);
        }
        extract(folder);
        QCOMPARE(file_names(folder), QStringLiteral("one; of the next"));
    }

    void cancel_keeps_the_rows_so_far_data() {
        QTest::addColumn<int>("rows_before_cancel");
        QTest::addColumn<QString>("written");
        QTest::addColumn<bool>("ended");
        QTest::newRow("between records") << 1 << QStringLiteral("a1") << false;
        QTest::newRow("between containers") << 2 << QStringLiteral("a1; a2") << false;
        QTest::newRow("between files") << 3 << QStringLiteral("a1; a2; b1") << false;
        QTest::newRow("after the last row") << 5 << QStringLiteral("a1; a2; b1; c1; c2") << true;
    }

    void cancel_keeps_the_rows_so_far() {
        QFETCH(int, rows_before_cancel);
        test_case_folder folder;
        const QStringList files{database_of(folder, anna), database_of(folder, bernd)};
        write_database(files.at(0), {cortana("Content", {{"a1", "url"}, {"a2", "url"}}),
                                     cortana("Content", {{"b1", "url"}}), cortana("Cookies", {{"unselected", "url"}})});
        write_database(files.at(1), {cortana("Content", {{"c1", "url"}, {"c2", "url"}}),
                                     cortana("Cookies", {{"unselected", "url"}})});
        extract_until(rows_before_cancel, folder, files);
        QTEST(file_names(folder), "written");
        QFETCH(bool, ended);
        const QStringList log = folder.take_log();
        QCOMPARE(log.size(), ended ? 2 : 1);
        QCOMPARE(log.last().contains(QStringLiteral("end")), ended);
    }

    void many_records_keep_their_order_data() {
        QTest::addColumn<int>("rows");
        QTest::addColumn<int>("rows_before_cancel");
        QTest::addColumn<int>("characters"); // of each URL
        QTest::newRow("long values") << 150 << 9999 << 20000;
        QTest::newRow("cancelled") << 1000 << 600 << 10;
    }

    void many_records_keep_their_order() {
        QFETCH(int, rows_before_cancel);
        QFETCH(int, characters);
        QFETCH(int, rows);
        test_case_folder folder;
        std::vector<webcache_entry> entries;
        QStringList names;
        for (int number = 0; number < rows; ++number) {
            const QString name = QString::number(number);
            entries.push_back({name.toStdString(), std::string(static_cast<size_t>(characters), 'x')});
            names.append(name);
        }
        write_database(database_of(folder, anna), {cortana("Content", entries), cortana("Content", {{"next", "url"}})});
        names.append(QStringLiteral("next"));
        extract_until(rows_before_cancel, folder, {database_of(folder, anna)});
        const QStringList written = names.mid(0, rows_before_cancel);
        QCOMPARE(file_names(folder), written.join(QStringLiteral("; ")));
    }

    void cancelled_before_it_starts_data() { add_tables(); }

    void cancelled_before_it_starts() {
        QFETCH(int, table);
        test_case_folder folder;
        // Without containers only the look before each file is left to see it.
        for (const bool has_containers : {true, false}) {
            write_database(database_of(folder, anna), {cortana(tables[table].container_name, {{"a", "url"}})});
            if (!has_containers) {
                folder.write_file(database_of(folder, anna).mid(folder.root().size()), "no database");
            }
            auto front = folder.make_front();
            front->find_source_file();
            QCOMPARE(front->found_webcache_files().size(), 1);
            folder.take_log();
            front->winos_cancel_extraction();
            (front.get()->*tables[table].extract)();
            QCOMPARE(folder.dump(QLatin1String(tables[table].name)), QStringList());
            const QStringList log = folder.take_log();
            QCOMPARE(log.size(), 1);
            QVERIFY(log.first().endsWith(QStringLiteral(" ----- STARTS ------")));
        }
    }

    void log_of_failures_data() { add_tables(); }

    void log_of_failures() {
        QFETCH(int, table);
        const table_under_test& tested = tables[table];
        const QString name = QLatin1String(tested.name);
        test_case_folder folder;
        write_database(database_of(folder, anna),
                       {cortana(tested.container_name, {{"a", "url"}, {"refused", "url"}, {"b", "url"}})});
        folder.execute(QStringLiteral("create trigger refusal before insert on %1 when new.file_name = 'refused' "
                                      "begin select raise(abort, 'not this one'); end")
                           .arg(name));
        auto front = folder.make_front();
        front->find_source_file();
        folder.take_log();
        (front.get()->*tested.extract)();
        QCOMPARE(file_names(folder, name), QStringLiteral("a; b"));
        front->winos_set_destination_location(QString(), QString(), folder.result_dir());
        (front.get()->*tested.extract)();
        QVERIFY(matches_golden(folder.take_log(),
                               QStringLiteral(GOLDEN_DIR "/") + name + QStringLiteral("_failures_log.txt")));
    }
};

QTEST_MAIN(test_webcache)
#include "test_webcache.moc"
