// SPDX-License-Identifier: MIT
// latest_audio_search from real folders: odd names, links, files that go.
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

    QString speech() const { return folder->package_folder("anna"_q) + "LocalState/LocalRecorder/Speech/"_q; }
    QByteArray path_of(const QByteArray& name) const { return QFile::encodeName(speech()) + name; }
    void add_file(const QString& name, int size = 1) const {
        folder->write_file(speech().mid(folder->root().size()) + name, QByteArray(size, 'x'));
        const timespec times[] = {{1589192430, 0}, {1500000000, 0}};
        ::utimensat(AT_FDCWD, QFile::encodeName(speech() + name).constData(), times, 0);
    }
    // A file whose name is no UTF-8; the case's clean-up cannot name it.
    void add_undecodable(const QByteArray& name, int size) const {
        add_file("x"_q, size);
        QCOMPARE(::rename(path_of("x").constData(), path_of(name).constData()), 0);
    }
    void extract() {
        front->find_source_file();
        front->extract_audio_search_files();
    }
    QStringList dump(const char* columns) const {
        return folder->dump("latest_audio_search"_q, QString::fromLatin1(columns).split(QLatin1Char(',')));
    }
    static QString row(const QString& name, int size) {
        return "file_name=text:%1 | file_size=integer:%2"_q.arg(name).arg(size);
    }
    QStringList names() const { return dump("file_name,file_size"); }

private Q_SLOTS:
    void init() {
        folder = std::make_unique<test_case_folder>();
        front = folder->make_front();
    }
    // The log is the process's: a case ends before the next begins.
    void cleanup() {
        front.reset();
        folder.reset();
    }

    void root_that_occurs_twice() {
        QDir().mkpath(speech() + folder->root().mid(1)); // the root's path again, below the folder
        add_file(folder->root().mid(1) + "a.wav"_q);
        extract();
        const QString below = speech().mid(folder->root().size());
        // Only the occurrence that is the whole root text, leading "/" included, counts.
        QCOMPARE(dump("windows_path"), QStringList("windows_path=text:C:/"_q + below.chopped(1) + "C:/a.wav"_q));
    }

    void odd_names() {
        const QStringList odd = {"with blank.wav"_q,  "it's \"quoted\".wav"_q,
                                 "line\nbreak.wav"_q, "Größe\U0001F98A.wav"_q,
                                 ".hidden"_q,         "blank at the end "_q};
        QStringList wanted{row("bad\uFFFD\uFFFD.wav"_q, 77)};
        for (const QString& name : odd) {
            add_file(name, wanted.size());
            wanted << row(name, wanted.size());
        }
        add_undecodable("bad\xff\xfe.wav", 77);
        extract();
        QCOMPARE(::unlink(path_of("bad\xff\xfe.wav").constData()), 0);
        QStringList rows = names();
        rows.sort();
        wanted.sort();
        QCOMPARE(rows, wanted);
        // Times are there for the undecodable name too.
        QVERIFY(dump("file_name,modification_time")
                    .contains("file_name=text:bad\uFFFD\uFFFD.wav | "
                              "modification_time=integer:1500000000"_q));
    }

    // A name that ends in white space has zeros, never the times of the file that is called so without it.
    void white_space_at_the_end() {
        for (const char* name : {"a.wav", "a.wav ", "a.wav\n", "b.wav\xc2\xa0"}) {
            add_file(QString::fromUtf8(name));
        }
        extract();
        const QString zeros = "modification_time=integer:0 | last_access_time=integer:0"_q;
        QCOMPARE(dump("modification_time,last_access_time"),
                 QStringList({"modification_time=integer:1500000000 | last_access_time=integer:1589192430"_q, zeros,
                              zeros, zeros}));
    }

    void links_and_other_entries() {
        add_file("real.wav"_q, 5);
        folder->write_file("../outside.wav"_q, QByteArray(99, 'x'));
        const QByteArray outside = QFile::encodeName(folder->root() + "../outside.wav"_q);
        const QPair<QByteArray, const char*> links[] = {{"real.wav", "link.wav"},
                                                        {"nowhere", "dangling.wav"},
                                                        {"loop.wav", "loop.wav"},
                                                        {".", "self"},
                                                        {outside, "foreign.wav"}};
        for (const auto& [target, name] : links) {
            QCOMPARE(::symlink(target.constData(), path_of(name).constData()), 0);
        }
        QCOMPARE(::mkfifo(path_of("pipe.wav").constData(), 0600), 0);
        extract();
        QCOMPARE(names(), QStringList({row("link.wav"_q, 5), row("real.wav"_q, 5)}));
    }

    void vanished_during_the_walk() {
        for (const char* name : {"a.wav", "b.wav", "c.wav"}) {
            add_file(QLatin1String(name));
        }
        folder->execute("create trigger refuse before insert on latest_audio_search when "
                        "new.file_name = 'b.wav' begin select raise(fail, 'no'); end"_q);
        add_undecodable("d\xff.wav", 1);
        // What the undecodable name looks like as text is the name of another file, whose values are not its own.
        add_file("d\uFFFD.wav"_q, 2);
        const at_failure_line vanish([this] {
            QFile::remove(speech() + "c.wav"_q);
            ::unlink(path_of("d\xff.wav").constData());
        });
        extract();
        const QStringList rows = dump("file_name,file_size,creation_time,modification_time,last_access_time");
        const QString nothing = " | file_size=text: | creation_time=integer:0 | "
                                "modification_time=integer:0 | last_access_time=integer:0"_q;
        QCOMPARE(rows.size(), 4);
        QCOMPARE(rows.at(1), "file_name=text:c.wav"_q + nothing);
        QCOMPARE(rows.filter(nothing).size(), 2);
        QCOMPARE(rows.filter("file_name=text:d\uFFFD.wav"_q).size(), 2);
    }
};

QTEST_MAIN(test_audio_search_files)
#include "test_audio_search_files.moc"
