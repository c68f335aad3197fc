// SPDX-License-Identifier: MIT
// The rules on WebCache containers and entries.
#include "extractors/webcache_paths.h"

#include <QtTest>

class test_webcache_paths : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void container_is_selected_by_name_and_directory_data();
    void container_is_selected_by_name_and_directory();
    void secure_sub_directory_of_index_data();
    void secure_sub_directory_of_index();
    void windows_paths_data();
    void windows_paths();
    void on_disk_path_replaces_every_drive_data();
    void on_disk_path_replaces_every_drive();
    void urls_data();
    void urls();
    void texts_made_to_grow_take_no_memory();
};

void test_webcache_paths::container_is_selected_by_name_and_directory_data() {
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("directory");
    QTest::addColumn<bool>("selected");
    const QString content = QStringLiteral("Content");
    QTest::newRow("package") << content << QStringLiteral("C:/Packages/Microsoft.Windows.Cortana_x/AC/") << true;
    QTest::newRow("lower case package") << content << QStringLiteral("C:/microsoft.windows.cortana_x/") << true;
    QTest::newRow("anywhere in it") << content << QStringLiteral("C:/myCortanas/") << true;
    QTest::newRow("capitals") << content << QStringLiteral("C:/MICROSOFT.WINDOWS.CORTANA_X/") << false;
    QTest::newRow("mixed case") << content << QStringLiteral("C:/coRtana/") << false;
    QTest::newRow("other package") << content << QStringLiteral("C:/Microsoft.MicrosoftEdge/") << false;
    QTest::newRow("no directory") << content << QStringLiteral("") << false;
    QTest::newRow("name in lower case") << QStringLiteral("content") << QStringLiteral("C:/Cortana/") << false;
    QTest::newRow("longer name") << QStringLiteral("Content ") << QStringLiteral("C:/Cortana/") << false;
    QTest::newRow("no name") << QStringLiteral("") << QStringLiteral("C:/Cortana/") << false;
}

void test_webcache_paths::container_is_selected_by_name_and_directory() {
    QFETCH(QString, name);
    QFETCH(QString, directory);
    specific_table::struct_container_data container;
    container.name = name;
    container.directory = directory;
    QTEST(is_cortana_container(container, QStringLiteral("Content")), "selected");
}

void test_webcache_paths::secure_sub_directory_of_index_data() {
    QTest::addColumn<QString>("index");
    QTest::addColumn<QString>("sub_directory");
    QTest::newRow("first") << QStringLiteral("1") << QStringLiteral("ABCD1234");
    QTest::newRow("second") << QStringLiteral("2") << QStringLiteral("EFGH5678");
    QTest::newRow("in the second copy") << QStringLiteral("3") << QStringLiteral("ABCD1234");
    QTest::newRow("last") << QStringLiteral("4") << QStringLiteral("EFGH5678");
    for (const char* none : {"5", "0", "-1", "-2147483648", "4294967295", "99999999999999999999", "", "abc", "1.0"}) {
        QTest::newRow(qPrintable(QStringLiteral("none for '%1'").arg(QLatin1String(none))))
            << QString(QLatin1String(none)) << QStringLiteral("");
    }
}

void test_webcache_paths::secure_sub_directory_of_index() {
    QFETCH(QString, index);
    specific_table::struct_ano_data entry;
    entry.secure_directory = index;
    QCOMPARE(secure_sub_directory(entry), QString()); // no list: empty whatever the index
    const QStringList names{QStringLiteral("ABCD1234"), QStringLiteral("EFGH5678")};
    entry.container_secure_directories = names + names;
    QTEST(secure_sub_directory(entry), "sub_directory");
}

void test_webcache_paths::windows_paths_data() {
    QTest::addColumn<QString>("directory");
    QTest::addColumn<QString>("index");
    QTest::addColumn<QString>("filename");
    QTest::addColumn<QString>("with_secure_directory");
    QTest::addColumn<QString>("without");
    const QString d = QStringLiteral("C:/Cortana/");
    QTest::newRow("listed") << d << QStringLiteral("1") << QStringLiteral("a.js") << d + QStringLiteral("ABCD1234/a.js")
                            << d + QStringLiteral("a.js");
    QTest::newRow("doubled slash") << d << QStringLiteral("0") << QStringLiteral("a.js") << d + QStringLiteral("/a.js")
                                   << d + QStringLiteral("a.js");
    QTest::newRow("no file name") << d << QStringLiteral("1") << QStringLiteral("") << d + QStringLiteral("ABCD1234/")
                                  << d;
    QTest::newRow("nothing at all") << QStringLiteral("") << QStringLiteral("") << QStringLiteral("")
                                    << QStringLiteral("/") << QStringLiteral("");
    QTest::newRow("package corrected wherever it is")
        << QStringLiteral("C:/microsoft.windows.cortana_x/") << QStringLiteral("0")
        << QStringLiteral("microsoft.windows.cortanamicrosoft.windows.cortana")
        << QStringLiteral("C:/Microsoft.Windows.Cortana_x//Microsoft.Windows.CortanaMicrosoft.Windows.Cortana")
        << QStringLiteral("C:/Microsoft.Windows.Cortana_x/Microsoft.Windows.CortanaMicrosoft.Windows.Cortana");
    QTest::newRow("package joined from two parts")
        << QStringLiteral("C:/microsoft.windows") << QStringLiteral("") << QStringLiteral(".cortana")
        << QStringLiteral("C:/microsoft.windows/.cortana") << QStringLiteral("C:/Microsoft.Windows.Cortana");
    QTest::newRow("other spelling kept") << QStringLiteral("C:/Microsoft.windows.cortana_x/") << QStringLiteral("0")
                                         << QStringLiteral("f") << QStringLiteral("C:/Microsoft.windows.cortana_x//f")
                                         << QStringLiteral("C:/Microsoft.windows.cortana_x/f");
}

void test_webcache_paths::windows_paths() {
    QFETCH(QString, directory);
    QFETCH(QString, index);
    QFETCH(QString, filename);
    specific_table::struct_ano_data entry;
    entry.container_directory = directory;
    entry.container_secure_directories = QStringList{QStringLiteral("ABCD1234")};
    entry.secure_directory = index;
    entry.filename = filename;
    QTEST(windows_path_in_secure_directory(entry), "with_secure_directory");
    QTEST(windows_path_in_directory(entry), "without");
}

void test_webcache_paths::on_disk_path_replaces_every_drive_data() {
    QTest::addColumn<QString>("windows_path");
    QTest::addColumn<QString>("path");
    QTest::newRow("at the start") << QStringLiteral("C:/Users/u/f") << QStringLiteral("/mnt/C:/Users/u/f");
    QTest::newRow("twice") << QStringLiteral("C:/a/C:/b") << QStringLiteral("/mnt/C:/a//mnt/C:/b");
    QTest::newRow("only there") << QStringLiteral("C:/") << QStringLiteral("/mnt/C:/");
    QTest::newRow("other drive") << QStringLiteral("D:/f") << QStringLiteral("D:/f");
    QTest::newRow("lower case") << QStringLiteral("c:/f") << QStringLiteral("c:/f");
    QTest::newRow("empty") << QStringLiteral("") << QStringLiteral("");
}

void test_webcache_paths::on_disk_path_replaces_every_drive() {
    QFETCH(QString, windows_path);
    // A root that holds the searched text itself: what was put in is not searched again.
    QTEST(on_disk_path(windows_path, QStringLiteral("/mnt/C:/")), "path");
}

void test_webcache_paths::urls_data() {
    QTest::addColumn<QString>("url");
    QTest::addColumn<QString>("of_cookie");
    QTest::addColumn<QString>("of_domstore");
    const auto row = [](const char* url, const char* of_cookie, const char* of_domstore) {
        QTest::newRow(url) << QString(QLatin1String(url)) << QString(QLatin1String(of_cookie))
                           << QString(QLatin1String(of_domstore));
    };
    row("Cookie:anna@bing.com/", "bing.com/", "Cookie:anna@bing.com/");
    row("anna@a@b", "a@b", "anna@a@b");
    row("@bing.com/", "@bing.com/", "@bing.com/");
    row("@a@b", "@a@b", "@a@b");
    row("anna@", "", "anna@");
    row("https://bing.com", "https://bing.com", "https://bing.com");
    row("", "", "");
    row("DOMStore:https://bing.com", "DOMStore:https://bing.com", "https://bing.com");
    row("DOMStore:aDOMStore:b", "DOMStore:aDOMStore:b", "ab");
    row("DOMStore:DOMStore:", "DOMStore:DOMStore:", "");
    row("aDOMStore:b", "aDOMStore:b", "aDOMStore:b");
    row("domstore:b", "domstore:b", "domstore:b");
    row("DOMStore:anna@b", "b", "anna@b");
}

void test_webcache_paths::urls() {
    QFETCH(QString, url);
    QTEST(url_without_user(url), "of_cookie");
    QTEST(url_without_domstore(url), "of_domstore");
    // A null text would be stored as NULL.
    QVERIFY(!url_without_user(url).isNull());
    QVERIFY(!url_without_domstore(url).isNull());
}

void test_webcache_paths::texts_made_to_grow_take_no_memory() {
    const QString drives = QStringLiteral("C:/").repeated(1 << 20);
    const QString root = QStringLiteral("/mnt/") + QString(1000, QLatin1Char('x')) + QLatin1Char('/');
    QCOMPARE(on_disk_path(drives, root), drives);
    QCOMPARE(on_disk_path(drives, QStringLiteral("/m/")), QStringLiteral("/m/").repeated(1 << 20));
    QCOMPARE(url_without_domstore(QStringLiteral("DOMStore:").repeated(1 << 20)), QString());
}

QTEST_APPLESS_MAIN(test_webcache_paths)
#include "test_webcache_paths.moc"
