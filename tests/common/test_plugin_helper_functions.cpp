// SPDX-License-Identifier: MIT
// Media look-ups by extension, and ad-hoc copies of real files.
#include "common/plugin_helper_functions.h"
#include "common/plugin_static_function.h"
#include "tests/support/test_support.h"

#include <QDir>
#include <QtTest>

class test_plugin_helper_functions : public QObject {
    Q_OBJECT

    // A database in the evidence, and a helper that copies into tmp (not created).
    struct scratch {
        test_case_folder folder;
        plugin_helper_functions helper;
        const QString tmp = folder.root() + "tmp/"_q;
        const QString database = folder.root() + "a.db"_q;
        scratch() { helper.set_adhoc_parent_path(tmp); }
        // Each word is "path=content".
        void write(const QString& files) const {
            for (const QString& file : files.split(QLatin1Char(' '))) {
                folder.write_file(file.section(QLatin1Char('='), 0, 0), file.section(QLatin1Char('='), 1).toLatin1());
            }
        }
        // "name=content" of the scratch folder's files, sorted.
        QString copies() const {
            QStringList found = QDir(tmp).entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot);
            for (QString& name : found) {
                QFile file(tmp + name);
                name += file.open(QIODevice::ReadOnly) ? "="_q + QString::fromLatin1(file.readAll()) : QString();
            }
            return found.join(QLatin1Char(' '));
        }
    };

private Q_SLOTS:
    void look_ups_data() {
        QTest::addColumn<QString>("name");
        QTest::addColumn<QString>("kinds"); // i, v, a
        const auto rows = [](const char* kinds, std::initializer_list<const char*> names) {
            for (const char* name : names) {
                QTest::newRow(name) << QString::fromUtf8(name) << QString::fromLatin1(kinds);
            }
        };
        rows("i", {"photo.JPG", " photo.jpg ", ".jpg", "/some/folder.d/photo.bmp", "scan.001", ".2bp", ".411", ".73i",
                   ".8pbs", ".8xi", ".accountpicture-ms", ".acorn"});
        rows("a", {"song.mp3", "tune.669", ".2sf", ".2sflib", ".3ga", ".4mp", ".aac", ".aiff", ".amr"});
        rows("v", {"film.DVR-MS", "clip.3g2", ".264", ".3gp", ".3gp2", ".3gpp", ".avi", ".divx"});
        rows("ia", {"album.abm", "x.bmc", "x.box", "x.cel"});
        rows("", {"photo", "jpg", "photo.jpg.", "photo.jpg. ", "archive.tar.gz", "photo.jp", "photo.jpgx", "photo.jpg/",
                  "photo.\xc3\xa4pg", "photo.\xd9\xa1", "photo._jpg", ".", " ", ""});
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
        QTest::addColumn<QString>("before");
        QTest::addColumn<QString>("copies");
        QTest::newRow("wal only") << "a.db=db a.db-wal=w"
                                  << "a.db=db a.db-wal=w";
        QTest::newRow("both") << "a.db=db a.db-shm=s a.db-wal=w"
                              << "a.db=db a.db-shm=s a.db-wal=w";
        QTest::newRow("stale one stays") << "a.db=db a.db-wal=w tmp/a.db-wal=old"
                                         << "a.db=db a.db-wal=old";
    }

    void database_copy() {
        QFETCH(QString, before);
        scratch at;
        at.write(before);
        QCOMPARE(at.helper.get_adhoc_path_for_database(at.database), at.tmp + "a.db"_q);
        QTEST(at.copies(), "copies");
    }

    void regular_copies_get_free_names_and_no_companions() {
        scratch at;
        at.write("a.db=1 a.db-wal=wal"_q);
        QCOMPARE(at.helper.get_adhoc_path_for_regular_file(at.database), at.tmp + "a.db"_q);
        at.write("a.db=2"_q);
        QCOMPARE(at.helper.get_adhoc_path_for_regular_file(at.database), at.tmp + "1_a.db"_q);
        QCOMPARE(at.copies(), "1_a.db=2 a.db=1"_q);
    }

    void nothing_to_copy() {
        scratch at;
        QCOMPARE(at.helper.get_adhoc_path_for_database(" "_q), ""_q);
        QCOMPARE(at.helper.get_adhoc_path_for_regular_file(QString()), ""_q);
        // The failed copy is not reported.
        QCOMPARE(at.helper.get_adhoc_path_for_regular_file(at.database), at.tmp + "a.db"_q);
        at.write("a.db=db a.db-wal=wal"_q);
        plugin_static_function::set_cancel_extraction(true);
        QCOMPARE(at.helper.get_adhoc_path_for_database(at.database), ""_q);
        QCOMPARE(at.copies(), QString());
    }

    // Before the result folder is known nothing is written anywhere.
    void no_folder_to_copy_to() {
        scratch at;
        at.write("a.db=db tmp/here=x"_q);
        QVERIFY(QDir::setCurrent(at.tmp));
        plugin_helper_functions helper;
        QCOMPARE(helper.get_adhoc_path_for_database(at.database), ""_q);
        QCOMPARE(helper.get_adhoc_path_for_regular_file(at.database), ""_q);
        QVERIFY(QDir::setCurrent("/"_q));
        QCOMPARE(at.copies(), "here=x"_q);
    }
};

QTEST_MAIN(test_plugin_helper_functions)
#include "test_plugin_helper_functions.moc"
