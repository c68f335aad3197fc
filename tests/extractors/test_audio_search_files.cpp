// SPDX-License-Identifier: MIT
// latest_audio_search from real folders: every column typed, odd names, links, cancel, the exact log.
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
        // Times are there for the undecodable name too.
        const QStringList times = folder.dump(QStringLiteral("latest_audio_search"),
                                              {QStringLiteral("file_name"), QStringLiteral("modification_time")});
        QVERIFY(times.contains(
            QStringLiteral("file_name=text:bad\uFFFD\uFFFD.wav | modification_time=integer:1500000000")));
    }

    // A name that ends in white space has zeros, never the times of the file that is called so without it.
    void white_space_at_the_end() {
        test_case_folder folder;
        for (const char* name : {"a.wav", "a.wav ", "a.wav\n", "b.wav\xc2\xa0"}) {
            add_file(folder, QString::fromUtf8(name), 1);
        }
        auto front = ready_front(folder);
        front->extract_audio_search_files();
        const QStringList rows = folder.dump(QStringLiteral("latest_audio_search"),
                                             {QStringLiteral("modification_time"), QStringLiteral("last_access_time")});
        const QString zeros = QStringLiteral("modification_time=integer:0 | last_access_time=integer:0");
        QCOMPARE(rows.size(), 4);
        QCOMPARE(rows.first(),
                 QStringLiteral("modification_time=integer:1500000000 | last_access_time=integer:1589192430"));
        QCOMPARE(rows.mid(1), QStringList({zeros, zeros, zeros}));
    }

    void empty_folder() {
        test_case_folder folder;
        QDir().mkpath(speech(folder) + QStringLiteral("empty too"));
        auto front = ready_front(folder);
        QCOMPARE(front->found_speech_dirs().size(), 1);
        front->extract_audio_search_files();
        QCOMPARE(names(folder), QStringList());
        QCOMPARE(folder.take_log().filter(QStringLiteral("-----ENDS------")).size(), 1);
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

    // The second file's failure is told; then the host cancels, or the third file goes.
    static void refuse_second(const test_case_folder& folder) {
        for (const char* name : {"a.wav", "b.wav", "c.wav"}) {
            add_file(folder, QLatin1String(name), 1);
        }
        folder.execute(QStringLiteral("create trigger refuse before insert on latest_audio_search when "
                                      "new.file_name = 'b.wav' begin select raise(fail, 'no'); end"));
    }

    void cancelled_during_the_walk() {
        test_case_folder folder;
        refuse_second(folder);
        auto front = ready_front(folder);
        folder.take_log();
        const at_failure_line cancel([&front] { front->winos_cancel_extraction(); });
        front->extract_audio_search_files();
        QCOMPARE(names(folder), QStringList(QStringLiteral("file_name=text:a.wav | file_size=integer:1")));
        const QStringList log = folder.take_log();
        QCOMPARE(log.size(), 4); // the start and the failure
        QCOMPARE(log.filter(QStringLiteral("ENDS")), QStringList());
    }

    void vanished_during_the_walk() {
        test_case_folder folder;
        refuse_second(folder);
        add_file(folder, QStringLiteral("x"), 1);
        const QByteArray undecodable = QFile::encodeName(speech(folder)) + "d\xff.wav";
        QCOMPARE(::rename(QFile::encodeName(speech(folder) + QLatin1Char('x')).constData(), undecodable.constData()),
                 0);
        // What the undecodable name looks like as text is the name of another file, whose values are not its own.
        add_file(folder, QStringLiteral("d\uFFFD.wav"), 2);
        auto front = ready_front(folder);
        const at_failure_line vanish([&] {
            QFile::remove(speech(folder) + QStringLiteral("c.wav"));
            ::unlink(undecodable.constData());
        });
        front->extract_audio_search_files();
        const QStringList rows =
            folder.dump(QStringLiteral("latest_audio_search"),
                        {QStringLiteral("file_name"), QStringLiteral("file_size"), QStringLiteral("creation_time"),
                         QStringLiteral("modification_time"), QStringLiteral("last_access_time")});
        const QString nothing = QStringLiteral(" | file_size=text: | creation_time=integer:0 | "
                                               "modification_time=integer:0 | last_access_time=integer:0");
        QCOMPARE(rows.size(), 4);
        QCOMPARE(rows.at(1), QStringLiteral("file_name=text:c.wav") + nothing);
        QCOMPARE(rows.filter(nothing).size(), 2);
        QCOMPARE(rows.filter(QStringLiteral("file_name=text:d\uFFFD.wav")).size(), 2);
    }

    void cancelled_before() {
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
