// SPDX-License-Identifier: MIT
// Paths that evidence made up: what the rows show of them, and that nothing outside the source counts as existing.
#include "tests/extractors/webcache_files.h"

#include <QtTest>

class test_webcache_hostile_paths : public QObject {
    Q_OBJECT

private Q_SLOTS:
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
            odd(what, "C:\\Cortana\\", filename, QStringLiteral("C:/Cortana/") + filename,
                QStringLiteral("/Cortana/") + filename, exists);
        };
        const QString there = QStringLiteral("there.txt");
        const QString out = QStringLiteral("Cortana.sqlite");
        row("there", there, "text:YES");
        row("a folder", QStringLiteral("folder"), "text:YES");
        row("other case", QStringLiteral("There.txt"), "text:NO");
        row(".. that stays inside", QStringLiteral("../Cortana/there.txt"), "text:YES");
        row(".. in the file name", QStringLiteral("../../result/Cortana.sqlite"), "text:NO");
        row("link that leads out", QStringLiteral("link"), "text:NO");
        row("below a link that leads out", QStringLiteral("way_out/Cortana.sqlite"), "text:NO");
        row("line break", QStringLiteral("new\nline"), "text:YES");
        row("32,000 characters", QString(32000, QLatin1Char('x')), "text:NO");
        row("16,000 folders", QStringLiteral("x/").repeated(16000), "text:NO");
        odd("cut at NUL", "C:\\Cortana\\", there + QChar(QChar::Null) + QStringLiteral(".exe"),
            QStringLiteral("C:/Cortana/there.txt"), QStringLiteral("/Cortana/there.txt"), "text:YES");
        odd(".. in the directory", "C:\\Cortana\\..\\..\\result\\", out,
            QStringLiteral("C:/Cortana/../../result/Cortana.sqlite"),
            QStringLiteral("/Cortana/../../result/Cortana.sqlite"), "text:NO");
        odd("above the root", "C:\\Cortana\\..\\..\\", QString(), QStringLiteral("C:/Cortana/../../"),
            QStringLiteral("/Cortana/../../"), "text:NO");
        odd("absolute", "RESULT/Cortana", QStringLiteral(".sqlite"), QStringLiteral("RESULT/Cortana.sqlite"),
            QStringLiteral("RESULT/Cortana.sqlite"), "text:NO");
        for (const char* directory : {"Cortana/", "D:/Cortana/"}) { // relative, other drive
            odd(directory, directory, there, QLatin1String(directory) + there, QLatin1String(directory) + there,
                "text:NO");
        }
        odd("drive in the middle", "C:\\Cortana\\C:\\", there, QStringLiteral("C:/Cortana/C:/there.txt"),
            QStringLiteral("/Cortana/ROOT/there.txt"), "text:NO");
    }

    void hostile_paths() {
        QFETCH(QString, directory);
        QFETCH(QString, filename);
        test_case_folder folder;
        for (const char* name : {"there.txt", "new\nline", "folder/inside"}) {
            folder.write_file(QStringLiteral("Cortana/") + QLatin1String(name), "x");
        }
        const QString inside = folder.root() + QStringLiteral("Cortana/");
        QVERIFY(QFile::link(folder.database_path(), inside + QStringLiteral("link")));
        QVERIFY(QFile::link(folder.result_dir(), inside + QStringLiteral("way_out")));
        directory.replace(QStringLiteral("RESULT/"), folder.result_dir());
        write_database(
            database_of(folder, QStringLiteral("anna")),
            {{{0, "Cookies", directory.toStdString(), ""}, {{filename.toStdString(), "url", 1}, {"next", "url"}}}});
        auto front = folder.make_front();
        front->find_source_file();
        front->extract_cookies();
        const auto first = [&](const char* column) {
            QString rows =
                column_of(QStringLiteral("cookies"), QLatin1String(column), folder).section(QStringLiteral("; "), 0, 0);
            return rows.replace(folder.result_dir(), QStringLiteral("RESULT/"))
                .replace(folder.root(), QStringLiteral("ROOT/"));
        };
        QFETCH(QString, windows_path);
        QFETCH(QString, file_path);
        QCOMPARE(first("windows_path"), QStringLiteral("text:") + windows_path);
        for (const char* column : {"file_path", "preview_file_path", "export_file_paths"}) {
            QCOMPARE(first(column), QStringLiteral("text:") + file_path);
        }
        QTEST(first("file_exists"), "exists");
        QCOMPARE(folder.dump(QStringLiteral("cookies")).size(), 2);
    }
};

QTEST_MAIN(test_webcache_hostile_paths)
#include "test_webcache_hostile_paths.moc"
