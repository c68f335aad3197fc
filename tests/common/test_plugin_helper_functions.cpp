// SPDX-License-Identifier: MIT
// Media look-ups by extension, the form of the lists, and ad-hoc copies of real files.
#include "common/media_extensions.h"
#include "common/plugin_helper_functions.h"
#include "common/plugin_static_function.h"

#include <QDir>
#include <QRegularExpression>
#include <QSet>
#include <QTemporaryDir>
#include <QtTest>

class test_plugin_helper_functions : public QObject {
    Q_OBJECT

    // Two folders: evidence/ and tmp/ (not created), and a helper that copies into tmp/.
    struct scratch {
        QTemporaryDir folder;
        plugin_helper_functions helper;
        scratch() {
            QDir(folder.path()).mkdir(QStringLiteral("evidence"));
            helper.set_adhoc_parent_path(tmp());
        }
        QString evidence(const QString& name) const { return folder.path() + QStringLiteral("/evidence/") + name; }
        QString tmp() const { return folder.path() + QStringLiteral("/tmp/"); }
        void write(const QString& path, const QByteArray& content) const {
            QFile file(path);
            QVERIFY(file.open(QIODevice::WriteOnly) && file.write(content) == content.size());
        }
        // "name=content" of the scratch folder's files, sorted.
        QStringList copies() const {
            QStringList found;
            const QStringList names = QDir(tmp()).entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot);
            for (const QString& name : names) {
                QFile file(tmp() + name);
                found << (file.open(QIODevice::ReadOnly) ? name + QLatin1Char('=') + QString::fromLatin1(file.readAll())
                                                         : name);
            }
            return found;
        }
    };

private Q_SLOTS:
    void cleanup() { plugin_static_function::set_essentials(); }

    void list_form_data() {
        QTest::addColumn<int>("kind");
        QTest::addColumn<int>("count");
        QTest::addColumn<QByteArrayList>("named"); // in the list, in this order
        QTest::newRow("image") << 0 << 570 << QByteArrayList{".001",   ".2bp", ".411", ".73i",
                                                             ".8pbs",  ".8xi", ".abm", ".accountpicture-ms",
                                                             ".acorn", ".bmp"};
        QTest::newRow("audio") << 1 << 571
                               << QByteArrayList{".2sf", ".2sflib", ".3ga", ".4mp", ".669", ".aac", ".aiff", ".amr"};
        QTest::newRow("video") << 2 << 136
                               << QByteArrayList{".264", ".3g2", ".3gp", ".3gp2", ".3gpp", ".avi", ".divx", ".dvr-ms"};
    }

    void list_form() {
        QFETCH(int, kind);
        QFETCH(QByteArrayList, named);
        const media_extension_list lists[] = {image_extensions(), audio_extensions(), video_extensions()};
        const QRegularExpression form(QStringLiteral("^\\.[0-9a-z][^.A-Z\\s]*$"));
        QByteArrayList entries;
        for (const char* entry : lists[kind]) {
            QVERIFY2(form.match(QLatin1String(entry)).hasMatch(), entry);
            entries << entry;
        }
        QTEST(int(entries.size()), "count");
        QCOMPARE(QSet<QByteArray>(entries.begin(), entries.end()).size(), entries.size());
        const int first_letter = kind == 0 ? 9 : 5; // so many named ones stand at the very front
        QCOMPARE(entries.mid(0, first_letter), named.mid(0, first_letter));
        int from = 0;
        for (const QByteArray& entry : named) {
            from = entries.indexOf(entry, from);
            QVERIFY2(from >= 0, entry.constData());
        }
    }

    void every_entry_is_found() {
        plugin_helper_functions helper;
        for (const char* entry : image_extensions()) {
            QVERIFY2(helper.check_is_image_by_extn(QLatin1String(entry)), entry);
        }
        for (const char* entry : audio_extensions()) {
            QVERIFY2(helper.check_is_audio_by_extn(QLatin1String(entry)), entry);
        }
        for (const char* entry : video_extensions()) {
            QVERIFY2(helper.check_is_video_by_extn(QLatin1String(entry)), entry);
        }
    }

    void look_ups_data() {
        QTest::addColumn<QString>("name");
        QTest::addColumn<QString>("kinds"); // i, v, a
        const auto row = [](const char* name, const char* kinds) {
            QTest::newRow(name) << QString::fromUtf8(name) << QString::fromLatin1(kinds);
        };
        row("photo.jpg", "i");
        row("photo.JPG", "i");
        row(" photo.jpg ", "i");
        row(".jpg", "i");
        row("a.b.c.png", "i");
        row("/some/folder.d/photo.bmp", "i");
        row("song.mp3", "a");
        row("film.DVR-MS", "v");
        row("scan.001", "i");
        row("tune.669", "a");
        row("clip.3g2", "v");
        row("album.abm", "ia");
        row("x.bmc", "ia");
        row("x.box", "ia");
        row("x.cel", "ia");
        row("photo", "");
        row("jpg", "");
        row("photo.jpg.", "");
        row("photo.jpg..", "");
        row("photo.jpg. ", "");
        row("archive.tar.gz", "");
        row("photo.jp", "");
        row("photo.jpgx", "");
        row("photo.jpg/", "");
        row("photo.\xc3\xa4pg", "");
        row("photo.\xd9\xa1", "");
        row("photo._jpg", "");
        row(".", "");
        row("..", "");
        row(" ", "");
        row("", "");
    }

    void look_ups() {
        QFETCH(QString, name);
        plugin_helper_functions helper;
        const auto kinds_now = [&] {
            return QString(QLatin1String(helper.check_is_image_by_extn(name) ? "i" : "")) +
                   QLatin1String(helper.check_is_video_by_extn(name) ? "v" : "") +
                   QLatin1String(helper.check_is_audio_by_extn(name) ? "a" : "");
        };
        QTEST(kinds_now(), "kinds");
        helper.set_cancel_extraction(true);
        QCOMPARE(kinds_now(), QString());
        helper.set_essentials();
        QTEST(kinds_now(), "kinds");
    }

    void database_copy_data() {
        QTest::addColumn<QStringList>("companions");
        QTest::addColumn<QStringList>("copies");
        QTest::newRow("alone") << QStringList() << QStringList{QStringLiteral("a.db=db")};
        QTest::newRow("wal only") << QStringList{QStringLiteral("-wal")}
                                  << QStringList{QStringLiteral("a.db=db"), QStringLiteral("a.db-wal=-wal")};
        QTest::newRow("both") << QStringList{QStringLiteral("-shm"), QStringLiteral("-wal")}
                              << QStringList{QStringLiteral("a.db=db"), QStringLiteral("a.db-shm=-shm"),
                                             QStringLiteral("a.db-wal=-wal")};
    }

    void database_copy() {
        QFETCH(QStringList, companions);
        scratch at;
        at.write(at.evidence(QStringLiteral("a.db")), "db");
        for (const QString& companion : companions) {
            at.write(at.evidence(QStringLiteral("a.db") + companion), companion.toLatin1());
        }
        QCOMPARE(at.helper.get_adhoc_path_for_database(at.evidence(QStringLiteral("a.db"))),
                 at.tmp() + QStringLiteral("a.db"));
        QTEST(at.copies(), "copies");
    }

    void stale_companion_stays() {
        scratch at;
        at.write(at.evidence(QStringLiteral("a.db")), "new");
        at.write(at.evidence(QStringLiteral("a.db-wal")), "new");
        QVERIFY(QDir().mkpath(at.tmp()));
        at.write(at.tmp() + QStringLiteral("a.db-wal"), "stale");
        at.helper.get_adhoc_path_for_database(at.evidence(QStringLiteral("a.db")));
        QCOMPARE(at.copies(), QStringList({QStringLiteral("a.db=new"), QStringLiteral("a.db-wal=stale")}));
    }

    void regular_copies_get_free_names_and_no_companions() {
        scratch at;
        const QString path = at.evidence(QStringLiteral("a.wav"));
        at.write(path, "1");
        at.write(path + QStringLiteral("-wal"), "wal");
        QCOMPARE(at.helper.get_adhoc_path_for_regular_file(path), at.tmp() + QStringLiteral("a.wav"));
        at.write(path, "2");
        QCOMPARE(at.helper.get_adhoc_path_for_regular_file(path), at.tmp() + QStringLiteral("1_a.wav"));
        QCOMPARE(at.copies(), QStringList({QStringLiteral("1_a.wav=2"), QStringLiteral("a.wav=1")}));
    }

    void nothing_to_copy() {
        scratch at;
        QCOMPARE(at.helper.get_adhoc_path_for_database(QStringLiteral(" ")), QStringLiteral(""));
        QCOMPARE(at.helper.get_adhoc_path_for_regular_file(QString()), QStringLiteral(""));
        // The failed copy is not reported.
        QCOMPARE(at.helper.get_adhoc_path_for_regular_file(at.evidence(QStringLiteral("missing"))),
                 at.tmp() + QStringLiteral("missing"));
        QCOMPARE(at.copies(), QStringList());
        at.write(at.evidence(QStringLiteral("a.db")), "db");
        at.write(at.evidence(QStringLiteral("a.db-wal")), "wal");
        plugin_static_function::set_cancel_extraction(true);
        QCOMPARE(at.helper.get_adhoc_path_for_database(at.evidence(QStringLiteral("a.db"))), QStringLiteral(""));
        QCOMPARE(at.copies(), QStringList());
    }

    // Before the result folder is known nothing is written anywhere.
    void no_folder_to_copy_to() {
        scratch at;
        at.write(at.evidence(QStringLiteral("a.db")), "db");
        QVERIFY(QDir().mkpath(at.tmp()));
        QVERIFY(QDir::setCurrent(at.tmp()));
        plugin_helper_functions helper;
        QCOMPARE(helper.get_adhoc_path_for_database(at.evidence(QStringLiteral("a.db"))), QStringLiteral(""));
        QCOMPARE(helper.get_adhoc_path_for_regular_file(at.evidence(QStringLiteral("a.db"))), QStringLiteral(""));
        QVERIFY(QDir::setCurrent(QStringLiteral("/")));
        QCOMPARE(at.copies(), QStringList());
    }
};

QTEST_MAIN(test_plugin_helper_functions)
#include "test_plugin_helper_functions.moc"
