// SPDX-License-Identifier: MIT
// Media look-ups by extension, the form of the lists, and ad-hoc copies of real files.
#include "common/media_extensions.h"
#include "common/plugin_helper_functions.h"
#include "common/plugin_static_function.h"
#include "tests/support/test_text.h"

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
        const QString tmp = folder.filePath("tmp/"_q);
        const QString database = folder.filePath("evidence/a.db"_q);
        scratch() { helper.set_adhoc_parent_path(tmp); }
        // Each text is "path=content".
        void write(const QStringList& files) const {
            for (const QString& text : files) {
                const QString path = folder.filePath(text.section(QLatin1Char('='), 0, 0));
                QVERIFY(QDir().mkpath(QFileInfo(path).path()));
                QFile file(path);
                QVERIFY(file.open(QIODevice::WriteOnly) &&
                        file.write(text.section(QLatin1Char('='), 1).toLatin1()) > 0);
            }
        }
        // "name=content" of the scratch folder's files, sorted.
        QStringList copies() const {
            QStringList found = QDir(tmp).entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot);
            for (QString& name : found) {
                QFile file(tmp + name);
                name += file.open(QIODevice::ReadOnly) ? "="_q + QString::fromLatin1(file.readAll()) : QString();
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
        const QRegularExpression form("^\\.[0-9a-z][^.A-Z\\s]*$"_q);
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
        const auto all_found = [&](const media_extension_list& list, bool (plugin_helper_functions::*check)(QString)) {
            for (const char* entry : list) {
                QVERIFY2((helper.*check)(QLatin1String(entry)), entry);
            }
        };
        all_found(image_extensions(), &plugin_helper_functions::check_is_image_by_extn);
        all_found(audio_extensions(), &plugin_helper_functions::check_is_audio_by_extn);
        all_found(video_extensions(), &plugin_helper_functions::check_is_video_by_extn);
    }

    void look_ups_data() {
        QTest::addColumn<QString>("name");
        QTest::addColumn<QString>("kinds"); // i, v, a
        const auto rows = [](const char* kinds, std::initializer_list<const char*> names) {
            for (const char* name : names) {
                QTest::newRow(name) << QString::fromUtf8(name) << QString::fromLatin1(kinds);
            }
        };
        rows("i", {"photo.JPG", " photo.jpg ", ".jpg", "/some/folder.d/photo.bmp", "scan.001"});
        rows("a", {"song.mp3", "tune.669"});
        rows("v", {"film.DVR-MS", "clip.3g2"});
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
        QTest::addColumn<QStringList>("before");
        QTest::addColumn<QStringList>("copies");
        const auto row = [](const char* name, const QString& before, const QString& copies) {
            QTest::newRow(name) << before.split(QLatin1Char(' ')) << copies.split(QLatin1Char(' '));
        };
        row("alone", "evidence/a.db=db"_q, "a.db=db"_q);
        row("wal only", "evidence/a.db=db evidence/a.db-wal=w"_q, "a.db=db a.db-wal=w"_q);
        row("both", "evidence/a.db=db evidence/a.db-shm=s evidence/a.db-wal=w"_q, "a.db=db a.db-shm=s a.db-wal=w"_q);
        row("stale one stays", "evidence/a.db=db evidence/a.db-wal=w tmp/a.db-wal=old"_q, "a.db=db a.db-wal=old"_q);
    }

    void database_copy() {
        QFETCH(QStringList, before);
        scratch at;
        at.write(before);
        QCOMPARE(at.helper.get_adhoc_path_for_database(at.database), at.tmp + "a.db"_q);
        QTEST(at.copies(), "copies");
    }

    void regular_copies_get_free_names_and_no_companions() {
        scratch at;
        at.write({"evidence/a.db=1"_q, "evidence/a.db-wal=wal"_q});
        QCOMPARE(at.helper.get_adhoc_path_for_regular_file(at.database), at.tmp + "a.db"_q);
        at.write({"evidence/a.db=2"_q});
        QCOMPARE(at.helper.get_adhoc_path_for_regular_file(at.database), at.tmp + "1_a.db"_q);
        QCOMPARE(at.copies(), QStringList({"1_a.db=2"_q, "a.db=1"_q}));
    }

    void nothing_to_copy() {
        scratch at;
        QCOMPARE(at.helper.get_adhoc_path_for_database(" "_q), ""_q);
        QCOMPARE(at.helper.get_adhoc_path_for_regular_file(QString()), ""_q);
        // The failed copy is not reported.
        QCOMPARE(at.helper.get_adhoc_path_for_regular_file(at.database), at.tmp + "a.db"_q);
        QCOMPARE(at.copies(), QStringList());
        at.write({"evidence/a.db=db"_q, "evidence/a.db-wal=wal"_q});
        plugin_static_function::set_cancel_extraction(true);
        QCOMPARE(at.helper.get_adhoc_path_for_database(at.database), ""_q);
        QCOMPARE(at.copies(), QStringList());
    }

    // Before the result folder is known nothing is written anywhere.
    void no_folder_to_copy_to() {
        scratch at;
        at.write({"evidence/a.db=db"_q});
        QVERIFY(QDir().mkpath(at.tmp));
        QVERIFY(QDir::setCurrent(at.tmp));
        plugin_helper_functions helper;
        QCOMPARE(helper.get_adhoc_path_for_database(at.database), ""_q);
        QCOMPARE(helper.get_adhoc_path_for_regular_file(at.database), ""_q);
        QVERIFY(QDir::setCurrent("/"_q));
        QCOMPARE(at.copies(), QStringList());
    }
};

QTEST_MAIN(test_plugin_helper_functions)
#include "test_plugin_helper_functions.moc"
