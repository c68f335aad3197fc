// SPDX-License-Identifier: MIT
// The WebCache steps on real files: which containers are read, types, a record that cannot be read, blocks of records,
// and paths that evidence made up.
#include "samples/ese_damage.h"
#include "samples/webcache_schema.h"
#include "tests/support/test_support.h"

#include <QDir>
#include <QtTest>

namespace {

QString database_of(const test_case_folder& folder) {
    return folder.root() + "Users/anna/AppData/Local/Microsoft/Windows/WebCache/WebCacheV01.dat"_q;
}

struct stored_container {
    webcache_container listed;
    std::vector<webcache_entry> entries;
    bool has_table = true;
};

// Containers get the ids 1, 2, ...
void write_database(const test_case_folder& folder, const std::vector<stored_container>& containers) {
    QDir().mkpath(QFileInfo(database_of(folder)).path());
    ese_writer file(QFile::encodeName(database_of(folder)).constData());
    std::vector<webcache_container> listed;
    for (const stored_container& container : containers) {
        listed.push_back(container.listed);
        listed.back().id = static_cast<std::int64_t>(listed.size());
    }
    write_webcache_containers(file, listed);
    std::int64_t id = 0;
    for (const stored_container& container : containers) {
        ++id;
        if (container.has_table) {
            write_webcache_entries(file, id, container.entries);
        }
    }
    file.close();
}

// In a directory of Cortana's, with one secure sub-directory.
stored_container cortana(const ese_value& name, const std::vector<webcache_entry>& entries) {
    return {{0, name, R"(C:\Cortana\)", "ABCD1234"}, entries};
}

QString file_names(const test_case_folder& folder) {
    return folder.dump("cache_files"_q, {"file_name"_q}).join("; "_q).remove("file_name=text:"_q);
}

void extract(const test_case_folder& folder) {
    const auto front = folder.make_front();
    front->find_source_file();
    front->extract_cache_files();
}

} // namespace

class test_webcache : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void containers_are_selected() {
        const auto with_directory = [](const ese_value& directory, const char* file) {
            return stored_container{{0, "Content", directory, ""}, {{file, "url"}}};
        };
        test_case_folder folder;
        write_database(folder, {cortana("Content", {{"first", "url"}}),
                                cortana("Cookies", {{"of Cookies", "url"}}),
                                with_directory(R"(C:\microsoft.windows.cortana_x\)", "lower case directory"),
                                with_directory(R"(C:\MICROSOFT.WINDOWS.CORTANA_X\)", "capitals"),
                                with_directory(R"(C:\coRtana\)", "mixed case"),
                                with_directory(R"(C:\myCortanas\)", "anywhere in it"),
                                with_directory(R"(C:\Edge\)", "other package"),
                                with_directory(nullptr, "no directory"),
                                cortana("content", {{"lower case name", "url"}}),
                                cortana("Content ", {{"longer name", "url"}}),
                                cortana(nullptr, {{"no name", "url"}}),
                                {{0, "Content", R"(C:\Cortana\)", ""}, {{"no table", "url"}}, false},
                                cortana("Content", {{"last", "url"}, {"of all", "url"}})});
        extract(folder);
        QCOMPARE(file_names(folder), "first; lower case directory; anywhere in it; last; of all"_q);
    }

    void values_are_typed() {
        const test_case_folder folder({{"anna"_q, QString()}});
        webcache_entry filled{"a.js", "url", 1, 123, 4294967295U, 130000000000000000, -5, 1, 116444736000000000,
                              nullptr};
        webcache_entry nulls{nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr};
        write_database(folder, {cortana("Content", {filled, nulls})});
        extract(folder);
        QVERIFY(matches_golden(folder.dump("cache_files"_q), GOLDEN_DIR "/cache_files_rows.txt"_q));
    }

    void absent_numbers_are_empty_texts() {
        test_case_folder folder;
        std::vector<ese_column> columns = webcache_entry_columns();
        for (ese_column& column : columns) {
            column.name += column.name == "FileSize" || column.name == "AccessCount" ? "Elsewhere" : "";
        }
        QDir().mkpath(QFileInfo(database_of(folder)).path());
        ese_writer file(QFile::encodeName(database_of(folder)).constData());
        write_webcache_containers(file, {{1, "Content", R"(C:\Cortana\)", ""}});
        file.begin_table("Container_1", columns);
        file.add_row(webcache_entry_row({"a.js", "url", 0, 123, 4}, 1, 1));
        file.end_table();
        file.close();
        extract(folder);
        QCOMPARE(folder.dump("cache_files"_q, {"url"_q, "file_size"_q, "access_count"_q}),
                 QStringList("url=text:url | file_size=text: | access_count=text:"_q));
    }

    void records_before_an_unreadable_one_are_written() {
        test_case_folder folder;
        write_database(folder, {cortana("Content", {{"one", "url"}, {"two", "url"}, {"three", "url"}}),
                                cortana("Content", {{"of the next", "url"}})});
        QFile stored(database_of(folder));
        QVERIFY(stored.open(QIODevice::ReadOnly));
        // EntryId 2 of container 1; before the ids the record tells in two bytes where its fixed values end.
        const qint64 ids[] = {2, 1};
        const int at = stored.readAll().indexOf(QByteArray(reinterpret_cast<const char*>(ids), sizeof(ids)));
        QVERIFY(at > 0);
        for (const int offset : {at - 2, at - 1}) {
            ese_set_byte(QFile::encodeName(stored.fileName()).constData(), static_cast<std::uint64_t>(offset), 0xFF);
        }
        extract(folder);
        QCOMPARE(file_names(folder), "one; of the next"_q);
    }

    void many_records_keep_their_order_data() {
        QTest::addColumn<int>("rows");
        QTest::addColumn<int>("rows_before_cancel");
        QTest::addColumn<int>("characters"); // of each URL
        QTest::newRow("long values") << 150 << 151 << 20000;
        QTest::newRow("cancelled") << 1000 << 600 << 10;
    }

    // Records are written in blocks.
    void many_records_keep_their_order() {
        QFETCH(int, rows_before_cancel);
        QFETCH(int, characters);
        QFETCH(int, rows);
        test_case_folder folder;
        std::vector<webcache_entry> entries;
        QStringList names;
        for (int number = 0; number < rows; ++number) {
            names.append(QString::number(number));
            entries.push_back({names.last().toStdString(), std::string(static_cast<size_t>(characters), 'x')});
        }
        names.append("next"_q);
        write_database(folder, {cortana("Content", entries), cortana("Content", {{"next", "url"}})});
        const auto front = folder.make_front();
        front->find_source_file();
        folder.execute("create trigger refuse before insert on cache_files when new.file_name = '%1' "
                       "begin select raise(abort, 'no'); end"_q.arg(rows_before_cancel));
        const at_failure_line cancel([&front] { front->winos_cancel_extraction(); });
        front->extract_cache_files();
        QCOMPARE(file_names(folder), names.mid(0, rows_before_cancel).join("; "_q));
    }

    void hostile_paths_data() {
        QTest::addColumn<QString>("directory"); // RESULT is a folder beside the source, with a file "Cortana.sqlite"
        QTest::addColumn<QString>("filename");
        QTest::addColumn<QString>("windows_path");
        QTest::addColumn<QString>("file_path");
        QTest::addColumn<QString>("exists");
        const auto odd = [](const char* what, const char* directory, const QString& filename, const QString& windows,
                            const QString& file, const char* exists) {
            QTest::newRow(what) << QString::fromLatin1(directory) << filename << windows << file
                                << QString::fromLatin1(exists);
        };
        // Named by a container with the directory C:\Cortana\.
        const auto row = [&](const char* what, const QString& filename, const char* exists) {
            odd(what, "C:\\Cortana\\", filename, "C:/Cortana/"_q + filename, "/Cortana/"_q + filename, exists);
        };
        const QString there = "there.txt"_q;
        const QString out = "Cortana.sqlite"_q;
        row("there", there, "YES");
        row("a folder", "folder"_q, "YES");
        row("other case", "There.txt"_q, "NO");
        row(".. that stays inside", "../Cortana/there.txt"_q, "YES");
        row(".. in the file name", "../../result/Cortana.sqlite"_q, "NO");
        row("link that leads out", "link"_q, "NO");
        row("below a link that leads out", "way_out/Cortana.sqlite"_q, "NO");
        row("line break", "new\nline"_q, "YES");
        row("32,000 characters", QString(32000, QLatin1Char('x')), "NO");
        row("16,000 folders", "x/"_q.repeated(16000), "NO");
        odd("cut at NUL", "C:\\Cortana\\", there + QChar(QChar::Null) + ".exe"_q, "C:/Cortana/there.txt"_q,
            "/Cortana/there.txt"_q, "YES");
        odd(".. in the directory", "C:\\Cortana\\..\\..\\result\\", out, "C:/Cortana/../../result/Cortana.sqlite"_q,
            "/Cortana/../../result/Cortana.sqlite"_q, "NO");
        odd("above the root", "C:\\Cortana\\..\\..\\", QString(), "C:/Cortana/../../"_q, "/Cortana/../../"_q, "NO");
        odd("absolute", "RESULT/Cortana", ".sqlite"_q, "RESULT/Cortana.sqlite"_q, "RESULT/Cortana.sqlite"_q, "NO");
        for (const char* directory : {"Cortana/", "D:/Cortana/"}) { // relative, other drive
            odd(directory, directory, there, QLatin1String(directory) + there, QLatin1String(directory) + there, "NO");
        }
        odd("drive in the middle", "C:\\Cortana\\C:\\", there, "C:/Cortana/C:/there.txt"_q, "/Cortana/ROOT/there.txt"_q,
            "NO");
    }

    void hostile_paths() {
        QFETCH(QString, directory);
        QFETCH(QString, filename);
        test_case_folder folder;
        for (const char* name : {"there.txt", "new\nline", "folder/inside"}) {
            folder.write_file("Cortana/"_q + QLatin1String(name), "x");
        }
        const QString inside = folder.root() + "Cortana/"_q;
        QVERIFY(QFile::link(folder.database_path(), inside + "link"_q));
        QVERIFY(QFile::link(folder.result_dir(), inside + "way_out"_q));
        directory.replace("RESULT/"_q, folder.result_dir());
        write_database(folder, {{{0, "Cookies", directory.toStdString(), ""},
                                 {{filename.toStdString(), "url", 1}, {"next", "url"}}}});
        auto front = folder.make_front();
        front->find_source_file();
        front->extract_cookies();
        QFETCH(QString, windows_path);
        QFETCH(QString, file_path);
        QFETCH(QString, exists);
        QStringList rows = folder.dump("cookies"_q, {"windows_path"_q, "file_path"_q, "preview_file_path"_q,
                                                     "export_file_paths"_q, "file_exists"_q});
        QCOMPARE(rows.size(), 2);
        rows.first().replace(folder.result_dir(), "RESULT/"_q).replace(folder.root(), "ROOT/"_q);
        QCOMPARE(rows.first(),
                 "windows_path=text:%1 | file_path=text:%2 | preview_file_path=text:%2 | "
                 "export_file_paths=text:%2 | file_exists=text:%3"_q.arg(windows_path, file_path, exists));
    }
};

QTEST_MAIN(test_webcache)
#include "test_webcache.moc"
