// SPDX-License-Identifier: MIT
// latest_audio_search from real folders: every column typed, odd names, links, cancel, the exact log.
#include "common/plugin_static_function.h"
#include "tests/support/test_support.h"

#include <QDir>
#include <QtTest>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

class test_audio_search_files : public QObject {
    Q_OBJECT

    static QString speech(const test_case_folder& folder) {
        return folder.package_folder(QStringLiteral("anna")) + QStringLiteral("LocalState/LocalRecorder/Speech/");
    }
    static void add_file(const test_case_folder& folder, const QString& name, int size) {
        folder.write_file(speech(folder).mid(folder.root().size()) + name, QByteArray(size, 'x'));
        const timespec times[] = {{1589192430, 0}, {1500000000, 0}};
        ::utimensat(AT_FDCWD, QFile::encodeName(speech(folder) + name).constData(), times, 0);
    }
    static std::unique_ptr<cortana_winos> ready_front(const test_case_folder& folder) {
        auto front = folder.make_front({QStringLiteral("latest_audio_search")});
        front->find_source_file();
        return front;
    }
    static QStringList names(const test_case_folder& folder) {
        return folder.dump(QStringLiteral("latest_audio_search"),
                           {QStringLiteral("file_name"), QStringLiteral("file_size")});
    }

private Q_SLOTS:
    void whole_row() {
        test_case_folder folder;
        add_file(folder, QStringLiteral("sub/one.wav"), 44);
        auto front = ready_front(folder);
        front->winos_extract_artifacts();
        QString row = folder.dump(QStringLiteral("latest_audio_search")).join(QLatin1Char('\n'));
        row.replace(folder.root(), QStringLiteral("ROOT/"));
        // The birth time is the machine's.
        row.replace(QRegularExpression(QStringLiteral("\\bcreation_time=integer:\\d+")),
                    QStringLiteral("creation_time=integer:BIRTH"));
        QVERIFY(matches_golden(row.split(QStringLiteral(" | ")), QStringLiteral(GOLDEN_DIR "/audio_row.txt")));
    }

    void root_that_occurs_twice() {
        test_case_folder folder;
        const QString nested = speech(folder) + folder.root().mid(1); // the root's path again, below the folder
        QDir().mkpath(nested);
        add_file(folder, folder.root().mid(1) + QStringLiteral("a.wav"), 1);
        auto front = ready_front(folder);
        front->extract_audio_search_files();
        const QString below = speech(folder).mid(folder.root().size());
        // Only the occurrence that is the whole root text, leading "/" included, counts.
        QCOMPARE(
            folder.dump(QStringLiteral("latest_audio_search"), {QStringLiteral("windows_path")}),
            QStringList({QStringLiteral("windows_path=text:C:/") + below.chopped(1) + QStringLiteral("C:/a.wav")}));
    }

    void odd_names() {
        test_case_folder folder;
        const QStringList odd = {QStringLiteral("with blank.wav"),  QStringLiteral("it's \"quoted\".wav"),
                                 QStringLiteral("line\nbreak.wav"), QStringLiteral("Größe\U0001F98A.wav"),
                                 QStringLiteral(".hidden"),         QStringLiteral("blank at the end ")};
        for (int i = 0; i < odd.size(); ++i) {
            add_file(folder, odd.at(i), i + 1);
        }
        add_file(folder, QStringLiteral("x"), 77);
        const QByteArray plain = QFile::encodeName(speech(folder));
        QCOMPARE(::rename((plain + "x").constData(), (plain + "bad\xff\xfe.wav").constData()), 0);
        auto front = ready_front(folder);
        front->extract_audio_search_files();
        QCOMPARE(::unlink((plain + "bad\xff\xfe.wav").constData()), 0); // the folder's own clean-up cannot name it
        const QStringList rows = names(folder);
        QCOMPARE(rows.size(), odd.size() + 1);
        for (int i = 0; i < odd.size(); ++i) {
            const QString row = QStringLiteral("file_name=text:%1 | file_size=integer:%2").arg(odd.at(i)).arg(i + 1);
            QVERIFY2(rows.contains(row), qPrintable(row));
        }
        QVERIFY(rows.contains(QStringLiteral("file_name=text:bad\uFFFD\uFFFD.wav | file_size=integer:77")));
        // Times are there for the undecodable name too; a name that ends in a blank has zeros.
        const QStringList times = folder.dump(QStringLiteral("latest_audio_search"),
                                              {QStringLiteral("file_name"), QStringLiteral("modification_time")});
        QVERIFY(times.contains(
            QStringLiteral("file_name=text:bad\uFFFD\uFFFD.wav | modification_time=integer:1500000000")));
        QVERIFY(times.contains(QStringLiteral("file_name=text:blank at the end  | modification_time=integer:0")));
    }

    void links_and_other_entries() {
        test_case_folder folder;
        add_file(folder, QStringLiteral("real.wav"), 5);
        folder.write_file(QStringLiteral("../outside.wav"), QByteArray(99, 'x'));
        const QByteArray base = QFile::encodeName(speech(folder));
        QCOMPARE(::symlink("real.wav", (base + "link.wav").constData()), 0);
        QCOMPARE(::symlink("nowhere", (base + "dangling.wav").constData()), 0);
        QCOMPARE(::symlink("loop.wav", (base + "loop.wav").constData()), 0);
        QCOMPARE(::symlink(".", (base + "self").constData()), 0);
        QCOMPARE(::symlink(QFile::encodeName(folder.root() + QStringLiteral("../outside.wav")).constData(),
                           (base + "foreign.wav").constData()),
                 0);
        QCOMPARE(::mkfifo((base + "pipe.wav").constData(), 0600), 0);
        auto front = ready_front(folder);
        front->extract_audio_search_files();
        QCOMPARE(names(folder), QStringList({QStringLiteral("file_name=text:link.wav | file_size=integer:5"),
                                             QStringLiteral("file_name=text:real.wav | file_size=integer:5")}));
    }

    void two_runs_write_twice_and_count_on() {
        test_case_folder folder;
        add_file(folder, QStringLiteral("a.wav"), 1);
        auto front = ready_front(folder);
        front->winos_set_record_count(40);
        QSignalSpy records(front.get(), SIGNAL(signal_extracted_records_of_plugin_winos(qint64)));
        front->winos_extract_artifacts();
        front->extract_audio_search_files();
        QCOMPARE(names(folder).size(), 2);
        QCOMPARE(records.first().first().toLongLong(), qint64(41));
    }

    void cancelled_keeps_rows_and_logs_no_end() {
        test_case_folder folder;
        add_file(folder, QStringLiteral("a.wav"), 1);
        auto front = ready_front(folder);
        front->winos_cancel_extraction();
        folder.take_log();
        front->extract_audio_search_files();
        QCOMPARE(names(folder), QStringList());
        QCOMPARE(folder.take_log(), QStringList({QStringLiteral("cortana_winos::extract_audio_search_files:-- "
                                                                "[extract_audio_search_files] ----- STARTS ------")}));
    }

    void failures_are_logged() {
        test_case_folder folder;
        add_file(folder, QStringLiteral("a.wav"), 1);
        auto front = ready_front(folder);
        folder.execute(QStringLiteral("drop table latest_audio_search"));
        folder.take_log();
        front->extract_audio_search_files();
        front->winos_set_destination_location(folder.result_dir(), QString(),
                                              folder.result_dir() + QStringLiteral("no/x.sqlite"));
        front->extract_audio_search_files();
        QVERIFY(matches_golden(folder.take_log(), QStringLiteral(GOLDEN_DIR "/audio_failures_log.txt")));
    }
};

QTEST_MAIN(test_audio_search_files)
#include "test_audio_search_files.moc"
