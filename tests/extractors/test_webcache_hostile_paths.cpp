// SPDX-License-Identifier: MIT
// Paths that evidence made up: what the rows show of them, and that nothing outside the source counts as existing.
#include "tests/extractors/webcache_files.h"

#include <QtTest>

class test_webcache_hostile_paths : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void hostile_paths_data();
    void hostile_paths();
};

void test_webcache_hostile_paths::hostile_paths_data() {
    QTest::addColumn<QString>("directory"); // RESULT is a folder beside the source, with a file "Cortana.sqlite"
    QTest::addColumn<QString>("filename");
    QTest::addColumn<QString>("windows_path");
    QTest::addColumn<QString>("file_path");
    QTest::addColumn<QString>("exists");
    const auto row = [](const char* what, const QString& directory, const QString& filename, const QString& windows,
                        const QString& file, bool exists) {
        QTest::newRow(what) << directory << filename << windows << file
                            << (exists ? QStringLiteral("text:YES") : QStringLiteral("text:NO"));
    };
    const QString d = QStringLiteral("C:\\Cortana\\");
    const QString there = QStringLiteral("there.txt");
    const QString in = QStringLiteral("C:/Cortana/");
    const QString database = QStringLiteral("Cortana.sqlite");
    row("there", d, there, in + there, QStringLiteral("/Cortana/there.txt"), true);
    row("a folder", d, QStringLiteral("folder"), in + QStringLiteral("folder"), QStringLiteral("/Cortana/folder"),
        true);
    row("other case", d, QStringLiteral("There.txt"), in + QStringLiteral("There.txt"),
        QStringLiteral("/Cortana/There.txt"), false);
    row(".. that stays inside", d + QStringLiteral("..\\Cortana\\"), there,
        QStringLiteral("C:/Cortana/../Cortana/there.txt"), QStringLiteral("/Cortana/../Cortana/there.txt"), true);
    row(".. in the directory", d + QStringLiteral("..\\..\\result\\"), database,
        QStringLiteral("C:/Cortana/../../result/Cortana.sqlite"),
        QStringLiteral("/Cortana/../../result/Cortana.sqlite"), false);
    row(".. in the file name", d, QStringLiteral("../../result/Cortana.sqlite"),
        QStringLiteral("C:/Cortana/../../result/Cortana.sqlite"),
        QStringLiteral("/Cortana/../../result/Cortana.sqlite"), false);
    row("above the root", d + QStringLiteral("..\\..\\"), QStringLiteral(""), QStringLiteral("C:/Cortana/../../"),
        QStringLiteral("/Cortana/../../"), false);
    row("absolute", QStringLiteral("RESULTCortana"), QStringLiteral(".sqlite"), QStringLiteral("RESULT/Cortana.sqlite"),
        QStringLiteral("RESULT/Cortana.sqlite"), false);
    row("relative", QStringLiteral("Cortana\\"), there, QStringLiteral("Cortana/there.txt"),
        QStringLiteral("Cortana/there.txt"), false);
    row("other drive", QStringLiteral("D:\\Cortana\\"), there, QStringLiteral("D:/Cortana/there.txt"),
        QStringLiteral("D:/Cortana/there.txt"), false);
    row("drive in the middle", d + QStringLiteral("C:\\"), there, in + QStringLiteral("C:/there.txt"),
        QStringLiteral("/Cortana/ROOT/there.txt"), false);
    row("link that leads out", d, QStringLiteral("link"), in + QStringLiteral("link"), QStringLiteral("/Cortana/link"),
        false);
    row("below a link that leads out", d, QStringLiteral("way_out/Cortana.sqlite"),
        in + QStringLiteral("way_out/Cortana.sqlite"), QStringLiteral("/Cortana/way_out/Cortana.sqlite"), false);
    row("line break", d, QStringLiteral("new\nline"), in + QStringLiteral("new\nline"),
        QStringLiteral("/Cortana/new\nline"), true);
    row("cut at NUL", d, there + QChar(QChar::Null) + QStringLiteral(".exe"), in + there,
        QStringLiteral("/Cortana/there.txt"), true);
    const QString endless = QString(32000, QLatin1Char('x'));
    row("32,000 characters", d, endless, in + endless, QStringLiteral("/Cortana/") + endless, false);
    const QString deep = QStringLiteral("x/").repeated(16000);
    row("16,000 folders", d, deep, in + deep, QStringLiteral("/Cortana/") + deep, false);
}

void test_webcache_hostile_paths::hostile_paths() {
    QFETCH(QString, directory);
    QFETCH(QString, filename);
    test_case_folder folder;
    for (const char* name : {"there.txt", "new\nline", "folder/inside"}) {
        folder.write_file(QStringLiteral("Cortana/") + QLatin1String(name), "x");
    }
    const QString inside = folder.root() + QStringLiteral("Cortana/");
    QVERIFY(QFile::link(folder.database_path(), inside + QStringLiteral("link")));
    QVERIFY(QFile::link(folder.result_dir(), inside + QStringLiteral("way_out")));
    directory.replace(QStringLiteral("RESULT"), folder.result_dir());
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

QTEST_MAIN(test_webcache_hostile_paths)
#include "test_webcache_hostile_paths.moc"
