// SPDX-License-Identifier: MIT
// latest_audio_search from real folders: odd names, links, cancel, the exact log.
#include "tests/support/test_support.h"

#include <QDir>
#include <QtTest>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

class test_audio_search_files : public QObject {
    Q_OBJECT

    std::unique_ptr<test_case_folder> folder;
    std::unique_ptr<cortana_winos> front;

    QString speech() const {
        return folder->package_folder(QStringLiteral("anna")) + QStringLiteral("LocalState/LocalRecorder/Speech/");
    }
    QByteArray path_of(const QByteArray& name) const { return QFile::encodeName(speech()) + name; }
    void add_file(const QString& name, int size = 1) const {
        folder->write_file(speech().mid(folder->root().size()) + name, QByteArray(size, 'x'));
        const timespec times[] = {{1589192430, 0}, {1500000000, 0}};
        ::utimensat(AT_FDCWD, QFile::encodeName(speech() + name).constData(), times, 0);
    }
    // A file whose name is no UTF-8; the case's clean-up cannot name it.
    void add_undecodable(const QByteArray& name, int size) const {
        add_file(QStringLiteral("x"), size);
        QCOMPARE(::rename(path_of("x").constData(), path_of(name).constData()), 0);
    }
    void find() {
        front->find_source_file();
        folder->take_log();
    }
    QStringList dump(const char* columns) const {
        return folder->dump(QStringLiteral("latest_audio_search"),
                            QString::fromLatin1(columns).split(QLatin1Char(',')));
    }
    static QString row(const QString& name, int size) {
        return QStringLiteral("file_name=text:%1 | file_size=integer:%2").arg(name).arg(size);
    }
    // The second file's failure is told; then the host cancels, or the third file goes.
    void refuse_second() const {
        for (const char* name : {"a.wav", "b.wav", "c.wav"}) {
            add_file(QLatin1String(name));
        }
        folder->execute(QStringLiteral("create trigger refuse before insert on latest_audio_search when "
                                       "new.file_name = 'b.wav' begin select raise(fail, 'no'); end"));
    }
    QStringList names() const { return dump("file_name,file_size"); }

private Q_SLOTS:
    void init() {
        folder = std::make_unique<test_case_folder>();
        front = folder->make_front({QStringLiteral("latest_audio_search")});
    }
    // The log is the process's: a case ends before the next begins.
    void cleanup() {
        front.reset();
        folder.reset();
    }

    void root_that_occurs_twice() {
        QDir().mkpath(speech() + folder->root().mid(1)); // the root's path again, below the folder
        add_file(folder->root().mid(1) + QStringLiteral("a.wav"));
        find();
        front->extract_audio_search_files();
        const QString below = speech().mid(folder->root().size());
        // Only the occurrence that is the whole root text, leading "/" included, counts.
        QCOMPARE(dump("windows_path"),
                 QStringList(QStringLiteral("windows_path=text:C:/") + below.chopped(1) + QStringLiteral("C:/a.wav")));
    }

    void odd_names() {
        const QStringList odd = {QStringLiteral("with blank.wav"),  QStringLiteral("it's \"quoted\".wav"),
                                 QStringLiteral("line\nbreak.wav"), QStringLiteral("Größe\U0001F98A.wav"),
                                 QStringLiteral(".hidden"),         QStringLiteral("blank at the end ")};
        QStringList wanted{row(QStringLiteral("bad\uFFFD\uFFFD.wav"), 77)};
        for (const QString& name : odd) {
            add_file(name, wanted.size());
            wanted << row(name, wanted.size());
        }
        add_undecodable("bad\xff\xfe.wav", 77);
        find();
        front->extract_audio_search_files();
        QCOMPARE(::unlink(path_of("bad\xff\xfe.wav").constData()), 0);
        QStringList rows = names();
        rows.sort();
        wanted.sort();
        QCOMPARE(rows, wanted);
        // Times are there for the undecodable name too.
        QVERIFY(dump("file_name,modification_time")
                    .contains(QStringLiteral("file_name=text:bad\uFFFD\uFFFD.wav | "
                                             "modification_time=integer:1500000000")));
    }

    // A name that ends in white space has zeros, never the times of the file that is called so without it.
    void white_space_at_the_end() {
        for (const char* name : {"a.wav", "a.wav ", "a.wav\n", "b.wav\xc2\xa0"}) {
            add_file(QString::fromUtf8(name));
        }
        find();
        front->extract_audio_search_files();
        const QString zeros = QStringLiteral("modification_time=integer:0 | last_access_time=integer:0");
        QCOMPARE(
            dump("modification_time,last_access_time"),
            QStringList({QStringLiteral("modification_time=integer:1500000000 | last_access_time=integer:1589192430"),
                         zeros, zeros, zeros}));
    }

    void links_and_other_entries() {
        add_file(QStringLiteral("real.wav"), 5);
        folder->write_file(QStringLiteral("../outside.wav"), QByteArray(99, 'x'));
        const QByteArray outside = QFile::encodeName(folder->root() + QStringLiteral("../outside.wav"));
        const QPair<QByteArray, const char*> links[] = {{"real.wav", "link.wav"},
                                                        {"nowhere", "dangling.wav"},
                                                        {"loop.wav", "loop.wav"},
                                                        {".", "self"},
                                                        {outside, "foreign.wav"}};
        for (const auto& [target, name] : links) {
            QCOMPARE(::symlink(target.constData(), path_of(name).constData()), 0);
        }
        QCOMPARE(::mkfifo(path_of("pipe.wav").constData(), 0600), 0);
        find();
        front->extract_audio_search_files();
        QCOMPARE(names(), QStringList({row(QStringLiteral("link.wav"), 5), row(QStringLiteral("real.wav"), 5)}));
    }

    void cancelled_during_the_walk() {
        refuse_second();
        find();
        const at_failure_line cancel([this] { front->winos_cancel_extraction(); });
        front->extract_audio_search_files();
        QCOMPARE(names(), QStringList(row(QStringLiteral("a.wav"), 1)));
        const QStringList log = folder->take_log();
        QCOMPARE(log.size(), 4); // the start and the failure
        QCOMPARE(log.filter(QStringLiteral("ENDS")), QStringList());
    }

    void vanished_during_the_walk() {
        refuse_second();
        add_undecodable("d\xff.wav", 1);
        // What the undecodable name looks like as text is the name of another file, whose values are not its own.
        add_file(QStringLiteral("d\uFFFD.wav"), 2);
        find();
        const at_failure_line vanish([this] {
            QFile::remove(speech() + QStringLiteral("c.wav"));
            ::unlink(path_of("d\xff.wav").constData());
        });
        front->extract_audio_search_files();
        const QStringList rows = dump("file_name,file_size,creation_time,modification_time,last_access_time");
        const QString nothing = QStringLiteral(" | file_size=text: | creation_time=integer:0 | "
                                               "modification_time=integer:0 | last_access_time=integer:0");
        QCOMPARE(rows.size(), 4);
        QCOMPARE(rows.at(1), QStringLiteral("file_name=text:c.wav") + nothing);
        QCOMPARE(rows.filter(nothing).size(), 2);
        QCOMPARE(rows.filter(QStringLiteral("file_name=text:d\uFFFD.wav")).size(), 2);
    }

    void cancelled_before() {
        add_file(QStringLiteral("a.wav"));
        find();
        front->winos_cancel_extraction();
        front->extract_audio_search_files();
        QCOMPARE(names(), QStringList());
        QCOMPARE(folder->take_log(), QStringList({QStringLiteral("cortana_winos::extract_audio_search_files:-- "
                                                                 "[extract_audio_search_files] ----- STARTS ------")}));
    }

    void failures_are_logged() {
        add_file(QStringLiteral("a.wav"));
        find();
        folder->execute(QStringLiteral("drop table latest_audio_search"));
        front->extract_audio_search_files();
        front->winos_set_destination_location(folder->result_dir(), QString(),
                                              folder->result_dir() + QStringLiteral("no/x.sqlite"));
        front->extract_audio_search_files();
        QVERIFY(matches_golden(folder->take_log(), QStringLiteral(GOLDEN_DIR "/audio_failures_log.txt")));
    }
};

QTEST_MAIN(test_audio_search_files)
#include "test_audio_search_files.moc"
