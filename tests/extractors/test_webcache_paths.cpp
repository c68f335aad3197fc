// SPDX-License-Identifier: MIT
// The rules on WebCache containers and entries.
#include "extractors/webcache_paths.h"
#include "tests/support/test_text.h"

#include <QtTest>

namespace {

template <typename... text>
void row(const char* name, text... texts) {
    QTestData& data = QTest::newRow(name);
    (void(data << QString(QLatin1String(texts))), ...);
}

} // namespace

class test_webcache_paths : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void windows_paths_data() {
        QTest::addColumn<QString>("directory");
        QTest::addColumn<QString>("index");
        QTest::addColumn<QString>("filename");
        QTest::addColumn<QString>("with_secure_directory");
        QTest::addColumn<QString>("without");
        row("first", "C:/", "1", "f", "C:/ABCD1234/f", "C:/f");
        row("second", "C:/", "2", "f", "C:/EFGH5678/f", "C:/f");
        row("in the second copy", "C:/", "3", "f", "C:/ABCD1234/f", "C:/f");
        row("last", "C:/", "4", "f", "C:/EFGH5678/f", "C:/f");
        for (const char* none :
             {"5", "0", "-1", "-2147483648", "4294967295", "99999999999999999999", "", "abc", "1.0"}) {
            row(qPrintable("none for '%1'"_q.arg(QLatin1String(none))), "C:/", none, "f", "C://f", "C:/f");
        }
        row("no file name", "C:/Cortana/", "1", "", "C:/Cortana/ABCD1234/", "C:/Cortana/");
        row("nothing at all", "", "", "", "/", "");
        row("package corrected wherever it is", "C:/microsoft.windows.cortana_x/", "0",
            "microsoft.windows.cortanamicrosoft.windows.cortana",
            "C:/Microsoft.Windows.Cortana_x//Microsoft.Windows.CortanaMicrosoft.Windows.Cortana",
            "C:/Microsoft.Windows.Cortana_x/Microsoft.Windows.CortanaMicrosoft.Windows.Cortana");
        row("package joined from two parts", "C:/microsoft.windows", "", ".cortana", "C:/microsoft.windows/.cortana",
            "C:/Microsoft.Windows.Cortana");
        row("other spelling kept", "C:/Microsoft.windows.cortana_x/", "0", "f", "C:/Microsoft.windows.cortana_x//f",
            "C:/Microsoft.windows.cortana_x/f");
    }

    void windows_paths() {
        QFETCH(QString, directory);
        QFETCH(QString, index);
        QFETCH(QString, filename);
        specific_table::struct_ano_data entry;
        entry.container_directory = directory;
        entry.secure_directory = index;
        QCOMPARE(secure_sub_directory(entry), QString()); // no list: empty whatever the index
        const QStringList names{"ABCD1234"_q, "EFGH5678"_q};
        entry.container_secure_directories = names + names;
        entry.filename = filename;
        QTEST(windows_path_in_secure_directory(entry), "with_secure_directory");
        QTEST(windows_path_in_directory(entry), "without");
    }

    void on_disk_path_replaces_every_drive_data() {
        QTest::addColumn<QString>("windows_path");
        QTest::addColumn<QString>("path");
        row("at the start", "C:/Users/u/f", "/mnt/C:/Users/u/f");
        row("twice", "C:/a/C:/b", "/mnt/C:/a//mnt/C:/b");
        row("other drive", "D:/f", "D:/f");
        row("lower case", "c:/f", "c:/f");
        row("empty", "", "");
    }

    void on_disk_path_replaces_every_drive() {
        QFETCH(QString, windows_path);
        // A root that holds the searched text itself: what was put in is not searched again.
        QTEST(on_disk_path(windows_path, "/mnt/C:/"_q), "path");
    }

    void urls_data() {
        QTest::addColumn<QString>("url");
        QTest::addColumn<QString>("of_cookie");
        QTest::addColumn<QString>("of_domstore");
        row("Cookie:anna@bing.com/", "Cookie:anna@bing.com/", "bing.com/", "Cookie:anna@bing.com/");
        row("anna@a@b", "anna@a@b", "a@b", "anna@a@b");
        row("@bing.com/", "@bing.com/", "@bing.com/", "@bing.com/");
        row("@a@b", "@a@b", "@a@b", "@a@b");
        row("anna@", "anna@", "", "anna@");
        row("https://bing.com", "https://bing.com", "https://bing.com", "https://bing.com");
        row("empty", "", "", "");
        row("DOMStore:https://bing.com", "DOMStore:https://bing.com", "DOMStore:https://bing.com", "https://bing.com");
        row("DOMStore:aDOMStore:b", "DOMStore:aDOMStore:b", "DOMStore:aDOMStore:b", "ab");
        row("DOMStore:DOMStore:", "DOMStore:DOMStore:", "DOMStore:DOMStore:", "");
        row("aDOMStore:b", "aDOMStore:b", "aDOMStore:b", "aDOMStore:b");
        row("domstore:b", "domstore:b", "domstore:b", "domstore:b");
        row("DOMStore:anna@b", "DOMStore:anna@b", "b", "anna@b");
    }

    void urls() {
        QFETCH(QString, url);
        QTEST(url_without_user(url), "of_cookie");
        QTEST(url_without_domstore(url), "of_domstore");
        // A null text would be stored as NULL.
        QVERIFY(!url_without_user(url).isNull());
        QVERIFY(!url_without_domstore(url).isNull());
    }

    void texts_made_to_grow_take_no_memory() {
        const QString drives = "C:/"_q.repeated(1 << 20);
        const QString root = "/mnt/"_q + QString(1000, QLatin1Char('x')) + QLatin1Char('/');
        QCOMPARE(on_disk_path(drives, root), drives);
        QCOMPARE(on_disk_path(drives, "/m/"_q), "/m/"_q.repeated(1 << 20));
        QCOMPARE(url_without_domstore("DOMStore:"_q.repeated(1 << 20)), QString());
    }
};

QTEST_APPLESS_MAIN(test_webcache_paths)
#include "test_webcache_paths.moc"
